// The installation that the host is a part of.
#pragma once

#include <vector>

#include "platform/data/Database.h"
#include "platform/desktop/HelpFile.h"

namespace switchdesk {

// A numbered set of background pictures for add-ins.
struct BackgroundSet {
    std::int16_t number = 0;
    platform::Text name;
};

class Family {
  public:
    // `directory` is that of the host's program. `engine` must outlive the object.
    Family(platform::DatabaseEngine& engine, platform::Text directory)
        : engine_(engine), directory_(std::move(directory)) {}

    // The background sets in the common database, ordered by number; set 0 has the default pictures. A set is
    // named after its first picture. Raises what reading a database raises.
    std::vector<BackgroundSet> BackgroundSets() const;

    // The opening page of an add-in's help file. Raises 53 if it is missing, and what reading a database
    // raises.
    platform::HelpTopic OpeningPage(platform::TextView helpFile) const;

  private:
    platform::DatabaseEngine& engine_;
    platform::Text directory_;
};

}  // namespace switchdesk
