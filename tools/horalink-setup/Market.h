// The market whose add-in hosts get.
#pragma once

#include <filesystem>
#include <string>

namespace setup {

// The directory of the family that this tool is installed with, …/lib/VELMORA32.
std::filesystem::path FamilyDirectory();

// Five letters, digits, "_" or "-", in upper case. Raises std::invalid_argument for anything else.
std::string CheckedMarket(std::string code);

// Lets the programs be started in a market, and the session bus start them there: for everybody where root
// does it, else for the user. Returns what has been done in a sentence. Raises Fault.
std::string ChooseMarket(const std::string& market);

}  // namespace setup
