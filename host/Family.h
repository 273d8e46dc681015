// What the host finds of the installation that it is a part of.
#pragma once

#include <vector>

#include "platform/data/Database.h"
#include "platform/desktop/HelpFile.h"

namespace switchdesk {

// A numbered set of pictures that an add-in can be dressed with.
struct BackgroundSet {
    std::int16_t number = 0;
    platform::Text name;
};

class Family {
  public:
    // `directory` is the one that the host's program lies in. `engine` must outlive the object.
    Family(platform::DatabaseEngine& engine, platform::Text directory)
        : engine_(engine), directory_(std::move(directory)) {}

    // The sets that the common texts know, in the order of their numbers: 0 with the pictures that add-ins
    // have by default first. A set is named after its first picture. Raises what reading a database raises.
    std::vector<BackgroundSet> BackgroundSets() const;

    // The opening page of an add-in's help file. Raises 53 where the file has none, and what reading a
    // database raises.
    platform::HelpTopic OpeningPage(platform::TextView helpFile) const;

  private:
    platform::DatabaseEngine& engine_;
    platform::Text directory_;
};

}  // namespace switchdesk
