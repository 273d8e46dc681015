// The record of a request or an answer: parallel lists of strings, and fields about the sender.
#pragma once

#include <array>
#include <vector>

#include "platform/runtime/Object.h"

namespace horalink {

using platform::Text;

// A public class: the host reads and writes a record through its members. All lists have the same bounds.
class cListRequest : public platform::Object {
  public:
    // One list each; an item is one index across all of them.
    enum List { CMD, FirstData, SecondData, ExtraData, DescriptionData, CK, ERMFP, MSGFP, ListCount };

    const platform::ClassDescription& Class() const override;

    Text PBXName, PBXNumber, LoginID, RequestID, Tag, TimeTag, Key;
    std::int16_t CommandType = 20;
    std::int32_t ErrCode = 0;
    bool ShowBusy = true, CompIndication = false, WaitFlag = true;
    std::int16_t Mode = 0;

    const Text& ObjectID() const { return objectID_; }
    std::int16_t Count() const { return count_; }

    // The content of an item, empty for an index outside 0 to Count − 1.
    Text Item(List list, std::int16_t index) const;
    // Changes an item; without effect for an index outside 0 to Count − 1.
    void SetItem(List list, std::int16_t index, Text content);

    // Appends an item. Raises 6 if there are 32,767 already; the texts then stay in the lists.
    void AddToList(const Text& cmd, const Text& fd = {}, const Text& sd = {}, const Text& ed = {},
                   const Text& desc = {});
    // Removes all items, and leaves the other fields.
    void Clear();

  private:
    template <List List>
    Text ItemOf(std::int16_t index) const {
        return Item(List, index);
    }
    template <List List>
    void SetItemOf(std::int16_t index, const Text& content) {
        SetItem(List, index, content);
    }
    template <List List>
    static platform::Slots ItemSlots(std::string_view name);
    bool IsItem(std::int16_t index) const { return index >= 0 && index < count_; }

    Text objectID_ = u"1";
    std::array<std::vector<Text>, ListCount> lists_;
    std::int16_t count_ = 0;
};

}  // namespace horalink
