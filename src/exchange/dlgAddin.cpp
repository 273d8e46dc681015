#include "exchange/dlgAddin.h"

#include <limits>

#include "clock/WindowPlacement.h"
#include "language/FormTexts.h"
#include "language/LanguageMsgBox.h"
#include "locator/comRegMora32.h"
#include "pictures/comPicture.h"
#include "platform/runtime/MemberTable.h"

namespace horalink {

using namespace platform;

dlgAddin::dlgAddin(const Services& services, ModuleData& data)
    : services_(services),
      data_(data),
      form_(std::make_shared<forms::Form>(u"dlgAddin", services.scheduler, services.toolkit)),
      controls_(LayOut(*form_)),
      links_(MakeLinks()),
      runningClock_(controls_, services.clock),
      timeField_(controls_),
      datePicking_(controls_, runningClock_, links_),
      tracking_(controls_, runningClock_, links_),
      contextHelp_(*form_, controls_),
      roundTrip_(services, data, *this, *form_, controls_, far_) {
    WireEvents();
    WireTimeAndDate();
    WireHelp();
}

dlgAddin::~dlgAddin() = default;

const ClassDescription& dlgAddin::Class() const {
    static const ClassDescription description{"dlgAddin",
                                              {
                                                  Method<&dlgAddin::IncrementCount>("IncrementCount"),
                                                  Method<&dlgAddin::DecrementCount>("DecrementCount"),
                                                  Write<&dlgAddin::PutPBXName>("PBXName"),
                                                  Method<&dlgAddin::FrmMove>("FrmMove", "Parent"),
                                                  Method<&dlgAddin::FrmPositionSave>("FrmPositionSave"),
                                                  Write<&dlgAddin::PutParent>("Parent"),
                                                  Write<&dlgAddin::PutID>("ID"),
                                                  Read<&dlgAddin::CheckLoadError>("CheckLoadError"),
                                                  Method<&dlgAddin::CallBack>("CallBack", "oResponse"),
                                                  Method<&dlgAddin::BackGround>("BackGround", "Index"),
                                                  Method<&dlgAddin::TurnFlow>("TurnFlow", "Value"),
                                              }};
    return description;
}

void dlgAddin::WireEvents() {
    form_->Loading = [this] { Form_Load(); };
    form_->Unloading = [this](bool& cancel) { Form_Unload(cancel); };
    controls_.tmrEvent->Tick = [this] { roundTrip_.tmrEvent_Timer(); };
    for (auto* button : controls_.cmdButton)
        button->Click = [this, index = button->Index()] { roundTrip_.cmdButton_Click(index); };
}

void dlgAddin::WireTimeAndDate() {
    controls_.tmrClock->Tick = [this] { runningClock_.UpdateDisplay(); };
    for (auto* box : controls_.txtTime) {
        box->GotFocus = [this, index = box->Index()] { timeField_.txtTime_GotFocus(index); };
        box->LostFocus = [this] { timeField_.txtTime_LostFocus(); };
    }
    controls_.updTime->Change = [this] { timeField_.updTime_Change(); };
    controls_.updTime->UpClick = [this] { timeField_.updTime_Click(); };
    controls_.updTime->DownClick = [this] { timeField_.updTime_Click(); };
    controls_.Calendar->BeforeUpdate = [this](bool& cancel) { datePicking_.Calendar_BeforeUpdate(cancel); };
    controls_.Calendar->AfterUpdate = [this] { datePicking_.Calendar_AfterUpdate(); };
    controls_.Calendar->NewYear = [this] { datePicking_.Calendar_NewYear(); };
    controls_.Calendar->NewMonth = [this] { datePicking_.Calendar_NewMonth(); };
    controls_.chkTrack->Click = [this] { tracking_.chkTrack_Click(); };
    controls_.chkTrackDate->Click = [this] { tracking_.chkTrackDate_Click(); };
}

// The buttons with their frame, the calendar and the background have no menu.
void dlgAddin::WireHelp() {
    const auto offer = [this](forms::Control* control) {
        control->MouseUp = [this, control](forms::MouseButton button) {
            contextHelp_.Control_MouseUp(*control, button);
        };
    };
    for (auto* control :
         {controls_.lblBevel[0], controls_.lblBevel[1], controls_.lblColon[0], controls_.lblColon[1],
          controls_.lblTime, controls_.lblTrack, controls_.lblTrackDate})
        offer(control);
    for (auto* box : controls_.txtTime) offer(box);
    offer(controls_.chkTrack);
    offer(controls_.chkTrackDate);
    offer(controls_.updTime);
    controls_.itmWhatsThis->Click = [this] { contextHelp_.itmWhatsThis_Click(); };
    form_->KeyDown = [this](std::int16_t keyCode) { Form_KeyDown(keyCode); };
}

DialogLinks dlgAddin::MakeLinks() {
    return {[this](std::int16_t which, bool enabled) { EnableButtons(which, enabled); },
            [this] { return !far_.PBXName.empty(); },
            [this] { ShowLanguageMsgBox(services_, data_, mode::general, box::yearOutOfRange); }};
}

void dlgAddin::Form_KeyDown(std::int16_t keyCode) {
    if (keyCode == forms::keyF1 && !data_.IsStandalone) Call(far_.HostObject, "DisplayHelp", u"Horalink.hlp");
}

void dlgAddin::IncrementCount() {
    if (RefCount == std::numeric_limits<std::int16_t>::max())
        throw RuntimeError(ErrorNumber::Overflow, "IncrementCount");
    ++RefCount;
}

std::int16_t dlgAddin::DecrementCount() {
    if (RefCount == std::numeric_limits<std::int16_t>::min())
        throw RuntimeError(ErrorNumber::Overflow, "DecrementCount");
    return --RefCount;
}

void dlgAddin::Form_Load() {
    try {
        LoadSteps();
    } catch (const RuntimeError& error) {
        TraceSkipped("Form_Load", error);
        LoadError = true;
    }
}

void dlgAddin::LoadSteps() {
    runningClock_.UpdateDisplay();
    RefCount = 0;
    LoadError = false;
    const Text help = ResolveDirectory(services_.app.path, services_.settings, u"Addins", u"Help");
    if (!help.empty()) services_.app.helpFile = help + u"Horalink" + u".HLP";
    if (!data_.AddInLanguageDb) {
        form_->Unload();
        return;
    }
    if (!LoadFormText(services_.boxes, *form_, *data_.AddInLanguageDb) ||
        !LoadControlsText(services_.boxes, *form_, *data_.AddInLanguageDb) ||
        !datePicking_.InitCalendar(*form_, data_.MarketCode)) {
        form_->Unload();
        return;
    }
    if (data_.IsStandalone) {
        far_.DirectHost =
            services_.automation.CreateObject(u"SwitchDeskProj" + data_.MarketCode + u".cPBXOle");
        PutPBXName(services_.app.command);
    }
    timeField_.Reset();
}

void dlgAddin::Form_Unload(bool&) {
    ErrorState error;
    roundTrip_.Stop();
    if (Closing) Closing();
    if (data_.IsStandalone)
        Skip(error, "LogOut",
             [&] { Call(far_.DirectHost, "LogOut", ByRef(far_.PBXName), ByRef(ConnectResult)); });
    if (data_.AddInLanguageDb) {
        Skip(error, "closing the texts", [&] { data_.AddInLanguageDb->Close(); });
        data_.AddInLanguageDb = nullptr;
    }
    if (far_.HostObject)
        Skip(error, "UnloadChild", [&] { Call(far_.HostObject, "UnloadChild", ByRef(ChildID)); });
}

void dlgAddin::PutPBXName(const Text& name) {
    ErrorState error;
    far_.PBXName = name;
    if (name.empty()) {
        EnableButtons(0, false);
    } else if (data_.IsStandalone) {
        Skip(error, "ConnectToPbx", [&] {
            ConnectResult =
                Call(far_.DirectHost, "ConnectToPbx", ByRef(far_.PBXName), shared_from_this()).ToText();
        });
        if (!ConnectResult.empty()) EnableButtons(0, true);
    } else {
        EnableButtons(0, true);
    }
    Skip(error, "the caption", [&] { ShowCaption(); });
}

void dlgAddin::ShowCaption() {
    form_->Caption = data_.MessageTable[message::caption] + u" (" + far_.PBXName + u")";
}

void dlgAddin::EnableButtons(std::int16_t which, bool enabled) {
    if (which == 0) controls_.cmdButton[button::lookup]->Enabled = enabled;
    if (which == 0 || which == 1) controls_.cmdButton[button::update]->Enabled = enabled;
}

void dlgAddin::FrmMove(const ObjectRef& parent) {
    if (!far_.HostObject) RestorePlace(*form_, services_.screen, parent);
}

void dlgAddin::FrmPositionSave() {
    SavePlace(*form_, far_.HostObject);
}

void dlgAddin::BackGround(std::int16_t index) {
    LoadFormPictures(services_, *form_, data_.AddInLanguageDb.get(), data_.CommonLanguageDb.get(), index,
                     data_.BackgroundDirectory);
}

void dlgAddin::TurnFlow(bool value) {
    Call(far_.HostObject, value ? "TurnOnFlow" : "TurnOffFlow");
}

}  // namespace horalink
