#include "host/Family.h"

#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

using platform::Text;
using platform::TextView;

namespace {

constexpr std::int32_t openingPage = 1;

// "sky.svg" is "Sky".
Text NameOfPicture(const Text& file) {
    Text name = file.substr(0, file.find(u'.'));
    if (!name.empty()) name.replace(0, 1, platform::UpperCase(name.substr(0, 1)));
    return name;
}

}  // namespace

std::vector<BackgroundSet> Family::BackgroundSets() const {
    const auto texts = engine_.OpenDatabase(directory_ + u"\\DATABASE\\Common.LNG", true);
    const auto rows =
        texts->OpenRecordset(u"SELECT ID, DefaultName, FileName FROM PictureFileName ORDER BY ID",
                             platform::RecordsetType::ForwardOnly);
    std::vector<BackgroundSet> sets;
    for (; !rows->EndOfFile(); rows->MoveNext()) {
        const std::int16_t number = rows->Field(u"ID").ToInteger();
        if (sets.empty()) sets.push_back({0, NameOfPicture(rows->Field(u"DefaultName").ToText())});
        if (number > sets.back().number)
            sets.push_back({number, NameOfPicture(rows->Field(u"FileName").ToText())});
    }
    return sets;
}

platform::HelpTopic Family::OpeningPage(TextView helpFile) const {
    const Text file = directory_ + u"\\..\\ADDINS\\HELP\\" + Text(helpFile);
    if (auto topic = platform::FindTopic(engine_, file, openingPage)) return *std::move(topic);
    throw platform::RuntimeError(platform::ErrorNumber::FileNotFound, platform::ToUtf8(helpFile));
}

}  // namespace switchdesk
