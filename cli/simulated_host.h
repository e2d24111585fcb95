// A simulated host that answers the library in the place of the machine's own WMI.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/text.h"
#include "simulator/simulator.h"

namespace quista::cli {

class SimulatedHost {
  public:
    /// Loads the simulator's DLL from `folder` and the host into it. Throws UsageError with file,
    /// line, column and reason when the host is malformed or does not exist.
    /// @param host name of a sample, or a MOF file relative to the current folder
    SimulatedHost(const std::wstring& folder, const std::string& host);

    /// Lets it answer on this thread, which is in a COM apartment. Throws Failure.
    void start();

    /// The sample's name or the file, as the user gave it.
    const std::string& name() const { return name_; }
    /// A sample is shared by all, and never changed.
    bool isSample() const { return simulator_->isSample(toWide(name_)); }
    bool isChanged() const { return simulator_->isChanged(); }
    /// Binary values of the host's registry, as the simulator keeps them; empty for none.
    std::vector<unsigned char> registryValue(const std::wstring& keyPath,
                                             const std::wstring& valueName) const {
        return simulator_->registryValue(keyPath, valueName);
    }
    void setRegistryValue(const std::wstring& keyPath, const std::wstring& valueName,
                          const std::vector<unsigned char>& bytes) {
        simulator_->setRegistryValue(keyPath, valueName, bytes);
    }
    /// Lets the host lose the classes of one of the simulator's class files, such as "korvadsm".
    /// Throws UsageError.
    void removeClasses(const std::string& classFile);
    /// Writes the host back to the file that it was loaded from: all of it, or nothing. Throws
    /// Failure.
    void save() const;
    /// Writes the host to another file. Throws Failure.
    void saveTo(const std::string& file) const;

  private:
    void write(const std::wstring& filePath, const std::string& shownAs) const;

    std::string name_;
    std::wstring filePath_;  ///< full, since the current folder changes
    std::unique_ptr<simulator::Simulator, simulator::DestroySimulatorFunction> simulator_;
};

}  // namespace quista::cli
