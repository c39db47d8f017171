// play-scenario FILE: runs a script against the editor and prints what the script asks for.

#include "shell/scenario.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: play-scenario FILE\n";
        return 2;
    }
    std::ifstream script(argv[1], std::ios::binary);
    if (!script) {
        std::cerr << "play-scenario: " << argv[1] << ": cannot be read\n";
        return 2;
    }
    // Tuning files of the run lie in a folder of their own, not in the user's.
    const auto folder =
        std::filesystem::temp_directory_path() / ("play-scenario-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    std::ios::sync_with_stdio(false);
    int status = 0;
    {
        quillon::Scenario scenario(folder.string(), std::cout);
        std::string line;
        while (std::getline(script, line) && scenario.Play(line)) {
        }
        status = scenario.Status();
    }
    std::filesystem::remove_all(folder);
    return status;
}
