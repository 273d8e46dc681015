// Introspection data of the public classes: names, types and the order of the slots are promised to hosts.
#include "platform/automation/Introspection.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "exchange/dlgAddin.h"
#include "harness/Desk.h"
#include "request/cListRequest.h"
#include "shell/cOLELayer.h"

using namespace horalink;
using namespace platform;

namespace {

TEST(IntrospectionTest, IsWhatTheFilesForHostsHave) {
    desk::Desk computer;
    AddInMain main(computer.services);
    const cOLELayer layer(main);
    const cListRequest record;
    for (const auto& [name, object] :
         {std::pair<const char*, const Object&>("/layer.xml", layer), {"/record.xml", record}}) {
        std::ifstream file(std::string(INTROSPECTION) + name);
        const std::string xml{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(TypedInterfaceXml(object.Class()) + "</node>\n", xml.substr(xml.find("  <interface")))
            << name;
    }
    EXPECT_EQ(TypedInterfaceXml(main.Dialog().Class()), "") << "not public";
}

}  // namespace
