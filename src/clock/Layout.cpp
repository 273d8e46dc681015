#include "clock/Layout.h"

namespace horalink {

namespace {

using namespace platform::forms;
using platform::Text;
using platform::TextView;

struct Spot {
    float left, top, width, height;  // twips
    std::int16_t tabIndex;
    std::int32_t helpId;
};

// The numbers of topics in the help file.
constexpr std::int32_t noHelp = 0, calendarHelp = 2, timeHelp = 3, trackHelp = 4, trackDateHelp = 5;
constexpr Color white = 0xFFFFFF, darkGrey = 0x808080;

template <class Type>
Type& Put(Form& form, const char16_t* name, std::int16_t index, const Spot& spot) {
    Type& control = form.Add<Type>(name, index);
    control.Place(spot.left, spot.top, spot.width, spot.height);
    control.TabIndex = spot.tabIndex;
    control.WhatsThisHelpID = spot.helpId;
    return control;
}

constexpr std::int16_t alone = -1;

PictureRef Icon(std::string_view content) {
    return std::make_shared<Picture>(std::string(content));
}

void PutImage(Form& form, DialogControls& controls) {
    controls.imgBack = &Put<Image>(form, u"imgBack", alone, {90, 45, 360, 435, -1, noHelp});
    controls.imgBack->Stretch = true;
}

Label* PutFrame(Form& form, std::int16_t index, const Spot& spot) {
    Label& frame = Put<Label>(form, u"lblBevel", index, spot);
    frame.Border = true;
    frame.Opaque = false;
    return &frame;
}

Label* PutColon(Form& form, std::int16_t index, const Spot& spot) {
    Label& colon = Put<Label>(form, u"lblColon", index, spot);
    colon.Caption = u":";
    colon.Align = Alignment::Center;
    colon.Opaque = false;
    return &colon;
}

Label* PutTrackText(Form& form, const char16_t* name, const char16_t* caption, const Spot& spot) {
    Label& label = Put<Label>(form, name, alone, spot);
    label.Caption = caption;
    label.Opaque = false;
    label.Font->Bold = true;
    return &label;
}

Label* PutTimeBox(Form& form) {
    Label& label = Put<Label>(form, u"lblTime", alone, {4590, 1440, 1455, 345, 10, timeHelp});
    label.Border = true;
    label.BackColor = white;
    return &label;
}

// From back to front, as they lie over one another.
void PutLabels(Form& form, DialogControls& controls) {
    controls.lblBevel[1] = PutFrame(form, 1, {3930, 675, 2985, 1890, 12, timeHelp});
    controls.lblTime = PutTimeBox(form);
    controls.lblColon[1] = PutColon(form, 1, {5250, 1500, 195, 270, 8, timeHelp});
    controls.lblColon[0] = PutColon(form, 0, {4875, 1500, 195, 270, 9, timeHelp});
    controls.lblBevel[0] = PutFrame(form, 0, {120, 675, 3600, 3015, 11, calendarHelp});
    controls.lblBevel[2] = PutFrame(form, 2, {120, 3765, 6810, 555, 13, noHelp});
    controls.lblTrack =
        PutTrackText(form, u"lblTrack", u"Track PC Time", {4545, 3255, 2040, 225, 15, trackHelp});
    controls.lblTrackDate =
        PutTrackText(form, u"lblTrackDate", u"Track PC Date", {4545, 2880, 2280, 225, 17, trackDateHelp});
}

CommandButton* PutButton(Form& form, std::int16_t index, const Spot& spot, const char16_t* text,
                         std::string_view icon, std::string_view disabledIcon) {
    CommandButton& button = Put<CommandButton>(form, u"cmdButton", index, spot);
    button.ToolTipText = text;
    button.Picture = Icon(icon);
    button.DisabledPicture = Icon(disabledIcon);
    return &button;
}

// The texts are place-holders; the language database replaces them.
void PutButtons(Form& form, DialogControls& controls) {
    controls.cmdButton[0] = PutButton(form, button::hide, {5865, 3840, 975, 375, 0, noHelp},
                                      u" Cacher cette fen\u00EAtre ", icons::hide, icons::hide);
    controls.cmdButton[1] =
        PutButton(form, button::update, {1230, 3855, 975, 375, 1, noHelp}, u" Mettre ? jour l'heure du PBX ",
                  icons::update, icons::updateDisabled);
    controls.cmdButton[2] = PutButton(form, button::lookup, {225, 3855, 975, 375, 2, noHelp},
                                      u" Obtenir l'heure du PBX ", icons::lookup, icons::lookupDisabled);
    controls.cmdButton[button::update]->Enabled = false;
    controls.cmdButton[button::lookup]->Enabled = false;
}

TextBox* PutSection(Form& form, std::int16_t index, const Spot& spot, const char16_t* text) {
    TextBox& box = Put<TextBox>(form, u"txtTime", index, spot);
    box.Text = text;
    box.Locked = true;
    box.Border = false;
    box.Align = Alignment::Center;
    return &box;
}

void PutTimeField(Form& form, DialogControls& controls) {
    controls.txtTime[3] = PutSection(form, 3, {5685, 1515, 285, 195, 3, timeHelp}, u"PM");
    controls.updTime = &Put<UpDown>(form, u"updTime", alone, {6045, 1455, 225, 345, 4, timeHelp});
    controls.txtTime[2] = PutSection(form, 2, {5415, 1515, 210, 195, 5, timeHelp}, u"00");
    controls.txtTime[1] = PutSection(form, 1, {5055, 1515, 210, 195, 6, timeHelp}, u"00");
    controls.txtTime[0] = PutSection(form, 0, {4680, 1515, 210, 195, 7, timeHelp}, u"12");
    for (TextBox* box : controls.txtTime) box->Spin = controls.updTime;
}

CheckBox* PutTrackBox(Form& form, const char16_t* name, const Spot& spot) {
    CheckBox& box = Put<CheckBox>(form, name, alone, spot);
    box.Caption = name;
    box.BackColor = darkGrey;
    box.SetValue(1);
    return &box;
}

void PutTracking(Form& form, DialogControls& controls) {
    controls.chkTrack = PutTrackBox(form, u"chkTrack", {4275, 3240, 195, 240, 14, trackHelp});
    controls.chkTrackDate = PutTrackBox(form, u"chkTrackDate", {4275, 2880, 195, 240, 16, trackDateHelp});
    controls.chkTrack->TextLabel = controls.lblTrack;
    controls.chkTrackDate->TextLabel = controls.lblTrackDate;
}

Timer* PutTimer(Form& form, const char16_t* name, std::int32_t interval, bool enabled) {
    Timer& timer = form.Add<Timer>(name);
    timer.Interval = interval;
    timer.Enabled = enabled;
    return &timer;
}

void PutMenu(Form& form, DialogControls& controls) {
    controls.mnuWhatsThis = &form.Add<Menu>(u"mnuWhatsThis");
    controls.mnuWhatsThis->Caption = u"WhatsThis";
    controls.mnuWhatsThis->Visible = false;
    controls.itmWhatsThis = &form.Add<Menu>(u"itmWhatsThis");
    controls.itmWhatsThis->Caption = u"What's This?";
    controls.mnuWhatsThis->Items.push_back(controls.itmWhatsThis);
}

void SetForm(Form& form) {
    form.Caption = u"Form1";
    form.Left = 3150;
    form.Top = 2295;
    form.Width = 7110;
    form.Height = 4365;
    form.BackColor = 0xC0C0C0;
    form.Icon = Icon(icons::horalink);
}

}  // namespace

DialogControls LayOut(Form& form) {
    DialogControls controls;
    SetForm(form);
    PutImage(form, controls);
    PutLabels(form, controls);
    PutButtons(form, controls);
    PutTimeField(form, controls);
    PutTracking(form, controls);
    controls.Calendar = &Put<Calendar>(form, u"Calendar", alone, {240, 720, 3375, 2895, 18, noHelp});
    controls.tmrClock = PutTimer(form, u"tmrClock", 1000, true);
    controls.tmrEvent = PutTimer(form, u"tmrEvent", 100, false);
    PutMenu(form, controls);
    return controls;
}

}  // namespace horalink
