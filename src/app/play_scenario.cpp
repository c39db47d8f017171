// play-scenario FILE: runs a script against the editor and prints what the script asks for.

#include "headless/scenario.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
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
    // Tuning files of the run are in a folder of their own, not in the user's.
    std::string folder = (std::filesystem::temp_directory_path() / "play-scenario-XXXXXX").string();
    std::ios::sync_with_stdio(false);
    int status = 2;
    try {
        if (!mkdtemp(folder.data()))
            throw std::runtime_error(folder + ": cannot be made");
        quillon::Scenario scenario(folder, std::cout);
        std::string line;
        while (std::getline(script, line) && scenario.Play(line)) {
        }
        if (script.bad())  // a folder, for one
            throw std::runtime_error(std::string(argv[1]) + ": cannot be read");
        if (!std::cout.flush())
            throw std::runtime_error("standard output cannot be written");
        status = scenario.Status();
    } catch (const std::exception& failure) {
        std::cerr << "play-scenario: " << failure.what() << '\n';
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return status;
}
