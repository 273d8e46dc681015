// Introspection data of the public classes: names, types and the order of the slots are promised to hosts.
#include "platform/automation/Introspection.h"

#include <gtest/gtest.h>

#include <regex>

#include "exchange/dlgAddin.h"
#include "harness/Desk.h"
#include "request/cListRequest.h"
#include "shell/cOLELayer.h"

using namespace horalink;
using namespace platform;

namespace {

// The elements of an interface, in their order, each as its name and the values of its attributes.
std::string Elements(const Object& object) {
    const std::regex element("[^<]*</?([a-z]+) ?([^>]*?)/?>[^<]*"), name("[A-Za-z]+=|\"");
    return std::regex_replace(std::regex_replace(TypedInterfaceXml(object.Class()), element, "$1 $2,"), name,
                              "");
}

TEST(IntrospectionTest, TheLayerWithItsNumbers) {
    desk::Desk computer;
    AddInMain main(computer.services);
    EXPECT_EQ(
        Elements(cOLELayer(main)),
        "interface Horalink10013._cOLELayer,method RegisterPBX,arg PBX s in,arg Parent (so) in,arg ID n in,"
        "arg Result b out,method ,property Visible b readwrite,method SetBackGround,arg Index n in,method ,"
        "annotation org.velmora.Automation1.ClassGuid {21A5C7B5-2A66-41D0-8298-C64D75E00ED2},"
        "annotation org.velmora.Automation1.InterfaceGuid {99B2190B-7900-4057-8B17-977CCB7DA003},"
        "annotation org.velmora.Automation1.TypeLibrary Horalink10013,"
        "annotation org.velmora.Automation1.TypeLibraryGuid {3213E8C5-0679-49E0-83FC-808506AA9FEB},"
        "annotation org.velmora.Automation1.TypeLibraryVersion 1.0,"
        "annotation org.freedesktop.DBus.Property.EmitsChangedSignal false,interface ,");
    EXPECT_EQ(TypedInterfaceXml(main.Dialog().Class()), "") << "not public";
}

TEST(IntrospectionTest, TheRecordInTheOrderOfItsSlots) {
    const cListRequest record;
    std::string slots;
    for (const Member& member : record.Class().members) {
        slots +=
            std::string(member.kind == InvokeKind::PropertyPut ? "=" : "") + std::string(member.name) + ":";
        for (const Parameter& parameter : member.parameters)
            slots += std::string(parameter.optional ? "?" : "") + std::string(SignatureOf(parameter.type));
        slots +=
            (member.result == ValueType::None ? "" : ">" + std::string(SignatureOf(member.result))) + " ";
    }
    EXPECT_EQ(slots,
              "Mode:>n =Mode:n Key:>s =Key:s CompIndication:>b =CompIndication:b ObjectID:>s PBXName:>s "
              "=PBXName:s =PBXNumber:s PBXNumber:>s ShowBusy:>b =ShowBusy:b WaitFlag:>b =WaitFlag:b "
              "LoginID:>s =LoginID:s =Tag:s Tag:>s =RequestID:s RequestID:>s =TimeTag:s TimeTag:>s "
              "AddToList:s?s?s?s?s CommandType:>n =CommandType:n Count:>n Clear: ErrCode:>i =ErrCode:i "
              "FirstData:n>s =FirstData:ns ExtraData:n>s =ExtraData:ns SecondData:n>s =SecondData:ns "
              "DescriptionData:n>s =DescriptionData:ns CMD:n>s =CMD:ns CK:n>s =CK:ns ERMFP:n>s "
              "=ERMFP:ns MSGFP:n>s =MSGFP:ns ");
    const std::string xml = TypedInterfaceXml(record.Class());
    for (const char* part : {"{7791E13E-1D0C-4062-8FD2-7F70BCB0AF50}",
                             "{903139A7-1682-4546-A54A-9F4AB42FEED5}", "method name=\"Put_CMD\""})
        EXPECT_NE(xml.find(part), std::string::npos) << part;
}

}  // namespace
