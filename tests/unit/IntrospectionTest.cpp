// Introspection data of the public classes: names, types and the order of the slots are promised to hosts.
#include "platform/automation/Introspection.h"

#include <gtest/gtest.h>

#include <regex>

#include "Desk.h"
#include "exchange/dlgAddin.h"
#include "request/cListRequest.h"
#include "shell/cOLELayer.h"

using namespace horalink;
using namespace platform;

namespace {

// The elements of an interface, in their order, each as its name and the values of its attributes.
std::string Elements(const Object& object, const std::string& kinds) {
    const std::string xml = TypedInterfaceXml(object.Class());
    const std::regex element("<(" + kinds + ") ([^>]*?)/?>"), name("[A-Za-z]+=|\"");
    std::string found;
    for (auto i = std::sregex_iterator(xml.begin(), xml.end(), element); i != std::sregex_iterator(); ++i)
        found += (*i)[1].str() + " " + std::regex_replace((*i)[2].str(), name, "") + "\n";
    return found;
}

TEST(IntrospectionTest, TheLayerWithItsNumbers) {
    desk::Desk computer;
    AddInMain main(computer.services);
    EXPECT_EQ(Elements(cOLELayer(main), "method|property|arg|annotation"), R"(method RegisterPBX
arg PBX s in
arg Parent (so) in
arg ID n in
arg Result b out
property Visible b readwrite
method SetBackGround
arg Index n in
annotation org.velmora.Automation1.ClassGuid {21A5C7B5-2A66-41D0-8298-C64D75E00ED2}
annotation org.velmora.Automation1.InterfaceGuid {99B2190B-7900-4057-8B17-977CCB7DA003}
annotation org.velmora.Automation1.TypeLibrary Horalink10013
annotation org.velmora.Automation1.TypeLibraryGuid {3213E8C5-0679-49E0-83FC-808506AA9FEB}
annotation org.velmora.Automation1.TypeLibraryVersion 1.0
annotation org.freedesktop.DBus.Property.EmitsChangedSignal false
)");
    EXPECT_EQ(TypedInterfaceXml(main.Dialog().Class()), "") << "not public";
}

TEST(IntrospectionTest, TheRecordInTheOrderOfItsSlots) {
    const cListRequest record;
    std::string members = std::regex_replace(Elements(record, "method|property"), std::regex("\n"), ", ");
    for (const char* kind : {"method ", "property ", " readwrite"})
        members = std::regex_replace(members, std::regex(kind), "");
    EXPECT_EQ(members,
              "Mode n, Key s, CompIndication b, ObjectID s read, PBXName s, PBXNumber s, ShowBusy b, "
              "WaitFlag b, LoginID s, Tag s, RequestID s, TimeTag s, AddToList, CommandType n, Count n read, "
              "Clear, ErrCode i, FirstData, Put_FirstData, ExtraData, Put_ExtraData, SecondData, "
              "Put_SecondData, DescriptionData, Put_DescriptionData, CMD, Put_CMD, CK, Put_CK, ERMFP, "
              "Put_ERMFP, MSGFP, Put_MSGFP, ");
    EXPECT_NE(Elements(record, "method|arg").find("method Put_CMD\narg Value n in\narg sValue s in\n"),
              std::string::npos);
}

}  // namespace
