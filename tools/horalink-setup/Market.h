// Chooses the market whose add-in hosts get.
#pragma once

#include <filesystem>
#include <string>

namespace setup {

// The family's directory in the installation of this tool, …/lib/VELMORA32.
std::filesystem::path FamilyDirectory();

// Five letters, digits, "_" or "-", in upper case. Raises std::invalid_argument for anything else.
std::string CheckedMarket(std::string code);

// Sets the programs up in a market, and makes the session bus start them there: for all users if root runs
// this tool, else for this user. Returns a sentence that says what was done. Raises Fault.
std::string ChooseMarket(const std::string& market);

}  // namespace setup
