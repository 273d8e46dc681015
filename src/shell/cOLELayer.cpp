#include "shell/cOLELayer.h"

#include "common/ModuleData.h"
#include "exchange/dlgAddin.h"
#include "platform/runtime/MemberTable.h"

namespace horalink {

using namespace platform;

namespace {

// Adds the name of each exchange to the application's title, once.
void MarkTitle(Text& title, const Text& pbx) {
    const Text mark = u"(" + pbx + u")";
    if (title.find(mark) == Text::npos) title += u" " + mark;
}

}  // namespace

const ClassDescription& cOLELayer::Class() const {
    static const ClassDescription description{
        "cOLELayer",
        {
            Method<&cOLELayer::RegisterPBX>("RegisterPBX", "PBX", "Parent", "ID"),
            Write<&cOLELayer::PutVisible>("Visible", "Visible"),
            Read<&cOLELayer::Visible>("Visible"),
            Method<&cOLELayer::SetBackGround>("SetBackGround", "Index"),
        },
        &typeLibrary,
        "{21A5C7B5-2A66-41D0-8298-C64D75E00ED2}",
        "{99B2190B-7900-4057-8B17-977CCB7DA003}"};
    return description;
}

std::shared_ptr<cOLELayer> cOLELayer::Create(AddInMain& main) {
    main.LoadAddIn();
    main.Dialog().IncrementCount();
    return std::make_shared<cOLELayer>(main);
}

bool cOLELayer::RegisterPBX(const Text& pbx, const ObjectRef& parent, std::int16_t id) {
    dlgAddin& dialog = main_.Dialog();
    // Before Parent: the dialog is placed only while it has no host.
    dialog.FrmMove(parent);
    dialog.PutParent(parent);
    dialog.PutPBXName(pbx);
    if (!pbx.empty()) MarkTitle(main_.App().title, pbx);
    dialog.PutID(id);
    return dialog.CheckLoadError();
}

void cOLELayer::PutVisible(bool visible) {
    forms::Form& window = main_.Dialog().Window();
    window.SetVisible(visible);
    window.SetFocus();
}

bool cOLELayer::Visible() {
    return main_.Dialog().Window().Visible();
}

void cOLELayer::SetBackGround(std::int16_t index) {
    main_.Dialog().BackGround(index);
}

// Runs before the reply to the release, so that a client that has it reaches a new process.
void cOLELayer::LastClientLeaves() {
    isLast_ = main_.Dialog().DecrementCount() <= 0;
    if (isLast_) main_.Retire();
}

void cOLELayer::LastClientGone() {
    if (isLast_) Class_Terminate();
}

void cOLELayer::Class_Terminate() {
    dlgAddin& dialog = main_.Dialog();
    // A button pressed just now must not log in while the host stores the place.
    dialog.StopRequests();
    dialog.FrmPositionSave();
    // Without a host, the unload that follows calls nobody back.
    dialog.PutParent(nullptr);
    dialog.Window().Unload();
    main_.DropDialog();
    main_.End();
}

}  // namespace horalink
