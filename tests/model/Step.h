// What can happen to the add-in from outside, one step at a time.
#pragma once

#include <ostream>
#include <vector>

namespace model {

enum class Act {
    // The operator.
    Click,        // a button of the dialog, by its index
    Close,        // the window
    PressF1,      //
    Toggle,       // 0 the box of the time, 1 that of the date
    Enter,        // a section of the time
    StepTime,     // the arrows: 0 up, 1 down
    ChooseDay,    // of the month that is shown
    TurnTo,       // an entry of `months`
    AskForTopic,  // by the menu on the arrows
    CloseBox,     // the innermost message box
    GiveUp,       // in the box of a wait
    KeepWaiting,  // in the box of a wait
    // The host.
    Hold,           // the next call of a member (an entry of `members`) stays out
    Hang,           // the next call of a member stays out until the operator gives up
    AnswerEarly,    // the next call of a member is answered only after `CallBack` to its request
    GoOn,           // the innermost call that stays out is answered
    Reply,          // the next call of a member fails in some way, see `ReplyOf`
    CallBack,       // an answer under a login, see `AnswerOf`
    Register,       // RegisterPBX with an entry of `exchanges`
    Show,           // Visible: 1 True, 0 False
    SetBackGround,  //
    TurnFlow,       // 1 on, 0 off
    Create,         // another object for the host
    CreateOther,    // an object for a second client
    RegisterOther,  // RegisterPBX by the second client, which has one
    Release,        // an object: 0 the oldest, 1 the newest
    ReleaseOther,   // what the second client has
    Die,            // the host's process; 1 while a second client keeps the add-in
    GetStuck,       // it gives no late answers and takes no calls that nobody waits for
    Wake,           //
    // Time, and the machine.
    Pass,          // an entry of `spans`
    SetClock,      // an entry of `moments`
    FailDatabase,  // the n-th call from now
};

struct Step {
    Act act;
    int n = 0;
};

std::ostream& operator<<(std::ostream& out, const Step& step);

// Every step that there is, those that lead far more often than the others.
const std::vector<Step>& AllSteps();

inline constexpr const char* members[] = {
    "oPBX", "Login", "ShowMessage", "SendRequest", "LogOut",      "ShowResults", "ShowCode",  "Count",
    "CMD",  "Tag",   "LoginID",     "UnloadChild", "DisplayHelp", "GetComData",  "REGComData"};
enum Member {
    oPBX,
    Login,
    ShowMessage,
    SendRequest,
    LogOut,
    ShowResults,
    Count = 7,
    UnloadChild = 11,
    REGComData = 14
};
inline constexpr int repliedMembers = 7;  // those of them that a reply can go wrong for

enum class Reply { Good, Busy, Error, Empty, Blank, Raises, Object, RefusedAsBusy };
inline constexpr int replies = 8;

inline constexpr const char16_t* exchanges[] = {u"Main", u"Second", u""};
inline constexpr int spans[] = {50, 100, 1000, 20000};  // milliseconds

struct Month {
    short year, month;
};
inline constexpr Month months[] = {{2026, 12}, {2027, 1}, {1900, 5}, {2100, 5}, {1901, 2}, {2099, 12}};
struct Moment {
    int year, month, day, hour, minute, second;
};
inline constexpr Moment moments[] = {
    {2026, 11, 18, 23, 59, 59}, {2028, 2, 28, 23, 59, 59}, {2026, 1, 1, 0, 0, 0}, {2027, 3, 28, 11, 59, 59}};

}  // namespace model
