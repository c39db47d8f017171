// The folder for the program's own files: tunings, the play file, journals, rescued work.

#pragma once

#include <string>

namespace quillon {

struct OwnFolder {
    std::string Path;
    std::string Trouble;  // why it is not the folder that was asked for, "" if it is
};

/// `wanted`, which is created if it is missing. If it cannot be created or written, a private
/// folder among the temporary files takes its place: the one from an earlier session, or a new one
/// with the tuning files that can be read. `wanted` again if that fails too.
OwnFolder ChooseOwnFolder(const std::string& wanted);

/// The folder of this run. Chosen once, so that all its files stay together.
const OwnFolder& ChosenOwnFolder();

}  // namespace quillon
