// The exports of quistasim.dll.
#include "simulator/com/simulated_host.h"
#include "simulator/generator/host_generator.h"
#include "simulator/simulator.h"

extern "C" {

quista::simulator::Simulator* quistaCreateSimulator() {
    return new quista::simulator::SimulatedHost();
}

void quistaDestroySimulator(quista::simulator::Simulator* simulator) {
    delete simulator;
}

void quistaGenerateHost(unsigned luns, unsigned pathsPerLun, std::wstring& mof) {
    mof = quista::simulator::generateHost(luns, pathsPerLun);
}
}
