// The tree that a package installs: programs, databases in every language, help, backgrounds.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace setup {

// Where the pieces of an installation lie below its root.
namespace place {
inline constexpr const char* addIn = "ADDINS/horalink";
inline constexpr const char* host = "MORA32/switchdesk";
inline constexpr const char* addInTexts = "ADDINS/DATABASE/Horalink.lng";
inline constexpr const char* commonTexts = "MORA32/DATABASE/Common.LNG";
inline constexpr const char* help = "ADDINS/HELP/Horalink.hlp";
inline constexpr const char* backgrounds = "BACKGRND";
inline constexpr const char* registry = "MORA32/DATABASE/Register.mdb";
}  // namespace place

struct Link {
    std::filesystem::path place;   // below the user's tree
    std::filesystem::path target;  // in the package's
};

class Package {
  public:
    // Raises Fault where `tree` holds no add-in.
    explicit Package(std::filesystem::path tree);

    const std::filesystem::path& Tree() const { return tree_; }

    // The folders with texts, sorted; none where the texts lie in the tree without one.
    std::vector<std::string> Languages() const;
    // The folder for a locale such as "de_AT.UTF-8", or that of English.
    std::string LanguageFor(const std::string& locale) const;
    // The folder of that name without regard to case. Raises WrongCall, naming those that there are.
    std::string CheckedLanguage(const std::string& name) const;

    // All pieces that a user's tree links to. The host's program may come with a later package.
    std::vector<Link> Links(const std::string& language) const;
    std::filesystem::path Register() const { return tree_ / place::registry; }

  private:
    std::filesystem::path tree_;
};

}  // namespace setup
