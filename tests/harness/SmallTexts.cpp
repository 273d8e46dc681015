#include <string>

#include "harness/MemoryDatabases.h"

namespace harness {

namespace {

constexpr auto boxTable = "create table tMsgBox (MsgNo, Prompt, Buttons, Title, HelpFile, Context);";

constexpr auto addInTexts = R"(
create table tProject (EXEName, Title, OleServerBusyMsgTitle, OleServerBusyMsgText,
                       OleRequestPendingMsgTitle, OleRequestPendingMsgText);
insert into tProject values
    ('Another', 'other title', 'other busy title', 'other busy text', 'other title', 'other text'),
    ('Horalink', 'app title', 'busy title', 'busy text', 'pending title', 'pending text');

insert into tMsgBox values
    (0, 'clock & %CR & %ST', 'vbOKOnly+vbInformation', 'clock title', null, '-1'),
    (1, 'set', 'vbOKOnly+vbQuestion', 'set title', null, '-1'),
    (2, 'not set & %CR & %ST', 'vbOKOnly+vbExclamation', 'not set title', null, '-1'),
    (3, 'not read', 'vbOKOnly+vbCritical', '-1', 'read.hlp', '73'),
    (4, 'year', 'vbOKOnly', 'year title', 'year.hlp', '74');

create table tMessages (ID integer primary key, Caption);
insert into tMessages values
    (16, 'give up'), (0, 'login failed'), (1, 'login title'), (2, 'no access'), (3, 'progress'),
    (4, 'caption'), (5, 'unused'), (6, 'answer error'), (7, 'ok'), (8, 'cancel'), (9, 'abort'),
    (10, 'retry'), (11, 'ignore'), (12, 'yes'), (13, 'no'), (14, 'help'), (15, 'keep waiting');

create table tForms (ObjectName, Caption, FontName, FontSize);
insert into tForms values ('dlgOther', 'other form', 'Other Sans', 7.5),
                          ('dlgAddin', 'form & %SP & caption', 'Form Sans', 8.25);

create table tControls (FormName, ObjectName, "Index", Caption, FontName, FontSize, ToolTipText);
insert into tControls values
    ('dlgOther', 'lblTrack', -1, 'other form', 'Other Sans', 7.5, 'other form'),
    ('dlgAddin', 'txtTime', 0, '-1', 'Hour Sans', 9, 'tip of hour'),
    ('dlgAddin', 'lblTrack', -1, 'follow time', 'Label Sans', 10, '-1');

create table tPicture (FormName, ObjectName, "Index", FileName, BasePanel, BasePanelIndex);
insert into tPicture values ('dlgOther', 'imgOther', -1, 'other.svg', 'me', -1),
                            ('dlgAddin', 'imgBack', -1, 'plain.svg', 'me', -1);
)";

constexpr auto commonTexts = R"(
insert into tMsgBox values (0, 'common & %ST', 'vbYesNo', 'common title', 'common.hlp', '75');

create table PictureFileName (ID, DefaultName, FileName);
insert into PictureFileName values (1, 'plain.svg', 'sky.svg'), (2, 'plain.svg', 'sand.svg'),
                                   (2, 'other.svg', 'meadow.svg');
)";

constexpr auto registerTexts = R"(
create table Registry (AppName, Title, Version, ClassName, Enabled);
insert into Registry values ('Another.mra', 'another', '1.2.3', 'Another10013.cOLELayer', -1),
                            ('Horalink.mra', 'clock', '0.0.0', 'Horalink10013.cOLELayer', -1);
)";

}  // namespace

void AddSmallTexts(MemoryDatabases& databases) {
    databases.Add(u"Horalink.lng", std::string(boxTable) + addInTexts);
    databases.Add(u"Common.LNG", std::string(boxTable) + commonTexts);
    databases.Add(u"Register.mdb", registerTexts);
}

}  // namespace harness
