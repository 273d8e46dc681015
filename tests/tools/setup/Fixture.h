// A home, a package's tree and a bus of the test's own.
#pragma once

#include <gtest/gtest.h>

#include "../../unit/TemporaryDirectory.h"
#include "common/Fault.h"
#include "horalink-setup/Commands.h"
#include "horalink-setup/Files.h"
#include "horalink-setup/Market.h"
#include "horalink-setup/Package.h"
#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/runtime/RuntimeError.h"

namespace setup {

namespace fs = std::filesystem;

class FakeBus : public platform::BusNames {
  public:
    std::set<std::string> Running() override { return Answer(running); }
    std::set<std::string> Startable() override { return Answer(startable); }
    void Reload() override { ++reloads; }

    std::set<std::string> running, startable{addInClass, ExchangeClass("10001"), ExchangeClass("20002")};
    bool isThere = true;
    int reloads = 0;

  private:
    std::set<std::string> Answer(const std::set<std::string>& names) const {
        if (!isThere) throw platform::RuntimeError(platform::ErrorNumber::ServerGone);
        return names;
    }
};

class SetupTest : public testing::Test {
  protected:
    SetupTest() {
        places_.program = top_ / "usr/bin/horalink-setup";
        places_.package = top_ / "usr/lib/VELMORA32/10001";
        places_.settings = top_ / "home/.config/velmora/settings.ini";
        places_.data = top_ / "home/.local/share";
        places_.ownServices = places_.data / "dbus-1/services";
        places_.services = {places_.ownServices, top_ / "usr/share/dbus-1/services"};
        Install();
    }

    // Lays out the package, and the home directory empty.
    void Install() const {
        for (const auto& entry : fs::directory_iterator(top_)) fs::remove_all(entry);
        for (const char* language : {"de", "en"}) MakeTexts(language);
        fs::copy_file(DATABASES "/Register.mdb", Made(places_.package / place::registry));
        for (const fs::path& program :
             {places_.package / place::addIn, places_.package / place::host, places_.program})
            MakeProgram(program);
        directory_.Write("usr/lib/VELMORA32/10001/BACKGRND/plain.svg", "<svg/>");
        fs::create_directories(top_ / "home");
    }
    static fs::path Made(const fs::path& file) {
        fs::create_directories(file.parent_path());
        return file;
    }
    // The texts themselves are English in every language.
    void MakeTexts(const std::string& language) const {
        const std::pair<const char*, const char*> pieces[] = {{"ADDINS/DATABASE", "Horalink.lng"},
                                                              {"ADDINS/HELP", "Horalink.hlp"},
                                                              {"MORA32/DATABASE", "Common.LNG"}};
        for (const auto& [folder, file] : pieces)
            fs::copy_file(fs::path(DATABASES "/en") / file, Made(places_.package / folder / language / file));
    }
    static void MakeProgram(const fs::path& file) {
        std::ofstream(Made(file)) << "#!/bin/sh\n";
        fs::permissions(file, static_cast<fs::perms>(0755));
    }

    Told AddMarket(const std::string& market = "10001", const std::optional<fs::path>& root = std::nullopt,
                   bool force = false) {
        return Add(context_, {market, root, std::nullopt, std::nullopt, force});
    }
    Told AddByForce(const std::optional<fs::path>& root = std::nullopt) {
        return AddMarket("10001", root, true);
    }
    fs::path Tree(const std::string& market = "10001") const { return places_.data / "VELMORA32" / market; }
    std::string Settings() const { return ReadFile(places_.settings).value_or("(none)"); }
    // What lies in the home directory, one path a line.
    std::string Home() const {
        std::set<std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(top_ / "home"))
            if (!entry.is_directory() || entry.is_symlink())
                files.insert(entry.path().lexically_relative(top_ / "home"));
        std::string list;
        for (const std::string& file : files) list += file + "\n";
        return list;
    }

    const platform::TemporaryDirectory directory_;
    const fs::path top_ = directory_.Path();
    Places places_;
    std::unique_ptr<platform::DatabaseEngine> engine_ = platform::MakeSqliteEngine();
    FakeBus bus_;
    Context context_{places_, *engine_, bus_};
};

}  // namespace setup
