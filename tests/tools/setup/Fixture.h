// A home, a package's tree and a bus of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>

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

    // Lays out the package, and the home directory empty. The texts are English in every language.
    void Install() const {
        for (const auto& entry : fs::directory_iterator(top_)) fs::remove_all(entry);
        for (const char* language : {"de", "en", "pt_BR"})
            for (const fs::path piece : {place::addInTexts, place::commonTexts, place::help})
                Lay(places_.package / piece.parent_path() / language / piece.filename(),
                    *ReadFile(fs::path(DATABASES "/en") / piece.filename()));
        Lay(places_.package / place::registry, *ReadFile(DATABASES "/Register.mdb"));
        Lay(places_.package / place::backgrounds / "plain.svg", "<svg/>");
        for (const fs::path& program :
             {places_.package / place::addIn, places_.package / place::host, places_.program}) {
            Lay(program, "#!/bin/sh\n");
            fs::permissions(program, fs::perms::owner_all);
        }
        fs::create_directories(top_ / "home");
    }
    void Lay(const fs::path& file, const std::string& content) const {
        directory_.Write(file.native(), content);
    }

    Told AddMarket(const std::string& market = "10001", const std::optional<fs::path>& root = {},
                   bool force = false) {
        return Add(context_, {market, root, {}, {}, force});
    }
    Told AddByForce() { return AddMarket("10001", {}, true); }
    fs::path Tree(const std::string& market = "10001") const { return places_.data / "VELMORA32" / market; }
    static std::string Backslashed(std::string path) {
        std::replace(path.begin(), path.end(), '/', '\\');
        return path;
    }
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
