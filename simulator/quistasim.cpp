// The exports of quistasim.dll. No exception leaves them: callers have a runtime of their own.
#include <exception>

#include "simulator/com/simulated_host.h"
#include "simulator/generator/host_generator.h"
#include "simulator/simulator.h"

extern "C" {

quista::simulator::Simulator* quistaCreateSimulator() {
    try {
        return new quista::simulator::SimulatedHost();
    } catch (const std::exception&) {
        return nullptr;
    }
}

void quistaDestroySimulator(quista::simulator::Simulator* simulator) {
    delete simulator;
}

void quistaGenerateHost(unsigned luns, unsigned pathsPerLun, std::wstring& mof) {
    try {
        mof = quista::simulator::generateHost(luns, pathsPerLun);
    } catch (const std::exception&) {
        mof.clear();
    }
}
}
