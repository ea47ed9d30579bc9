// plentiful_fakes.h - host and disk for the tests of scarce memory: they themselves never run out of it.
#pragma once
#include "base/host_functions.h"
#include "tests/memory/scarce_memory.h"
#include "tests/unit/fakes.h"

class PlentifulFiles : public MemoryFiles {
  protected:
    FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) override {
        FileResult result;
        std::string found;
        {
            const PlentyOfMemory plenty;
            result = MemoryFiles::readOnce(path, maxBytes, found);
        }
        bytes = found;  // the reader's own
        return result;
    }
    FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) override {
        const PlentyOfMemory plenty;
        return MemoryFiles::writeOnce(path, bytes, isFlushed);
    }
    FileResult moveOnce(const std::string& from, const std::string& to, bool isReplacing) override {
        const PlentyOfMemory plenty;
        return MemoryFiles::moveOnce(from, to, isReplacing);
    }
};

// The functions behind PlentifulHost; like the model itself, one at a time.
inline HostFunctions gHostBehind;

template <auto Function>
struct PlentifulHost;
template <class Result, class... Arguments, Result (*HostFunctions::*Function)(Arguments...)>
struct PlentifulHost<Function> {
    static Result call(Arguments... arguments) {
        const PlentyOfMemory plenty;
        return (gHostBehind.*Function)(arguments...);
    }
};

template <auto Function>
constexpr auto kPlentiful = &PlentifulHost<Function>::call;

inline HostFunctions plentifulHost(const HostFunctions& host) {
    gHostBehind = host;
    return {
        .freeMemory = kPlentiful<&HostFunctions::freeMemory>,
        .logMessage = kPlentiful<&HostFunctions::logMessage>,
        .playWaveFile = kPlentiful<&HostFunctions::playWaveFile>,
        .requestClientMove = kPlentiful<&HostFunctions::requestClientMove>,
        .getClientID = kPlentiful<&HostFunctions::getClientID>,
        .getClientSelfVariableAsInt = kPlentiful<&HostFunctions::getClientSelfVariableAsInt>,
        .getChannelOfClient = kPlentiful<&HostFunctions::getChannelOfClient>,
        .getChannelVariableAsString = kPlentiful<&HostFunctions::getChannelVariableAsString>,
        .getChannelList = kPlentiful<&HostFunctions::getChannelList>,
        .getCurrentServerConnectionHandlerID = kPlentiful<&HostFunctions::getCurrentServerConnectionHandlerID>,
        .createReturnCode = kPlentiful<&HostFunctions::createReturnCode>,
    };
}
