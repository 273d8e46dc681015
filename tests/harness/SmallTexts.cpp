#include "harness/SmallTexts.h"

namespace harness {

namespace {

constexpr auto boxTable = R"(
create table tMsgBox (MsgNo integer primary key, Prompt text not null, Buttons text not null,
                      Title text not null default '-1', HelpFile text, Context text not null default '-1');
)";

constexpr auto addInTexts = R"(
create table tProject (EXEName text primary key collate nocase, Title text not null,
                       OleServerBusyMsgTitle text, OleServerBusyMsgText text,
                       OleRequestPendingMsgTitle text, OleRequestPendingMsgText text);
insert into tProject values
    ('Another', 'other title', 'other busy title', 'other busy text', 'other title', 'other text'),
    ('Horalink', 'app title', 'busy title', 'busy text', 'pending title', 'pending text');

insert into tMsgBox (MsgNo, Prompt, Buttons, Title, HelpFile, Context) values
    (0, 'clock & %CR & %ST', 'vbOKOnly+vbInformation', 'clock title', null, '-1'),
    (1, 'set', 'vbOKOnly+vbQuestion', 'set title', null, '-1'),
    (2, 'not set & %CR & %ST', 'vbOKOnly+vbExclamation', 'not set title', null, '-1'),
    (3, 'not read', 'vbOKOnly+vbCritical', '-1', 'read.hlp', '73'),
    (4, 'year', 'vbOKOnly', 'year title', 'year.hlp', '74');

create table tMessages (ID integer primary key, Caption text);
insert into tMessages values
    (16, 'give up'), (0, 'login failed'), (1, 'login title'), (2, 'no access'), (3, 'progress'),
    (4, 'caption'), (5, 'unused'), (6, 'answer error'), (7, 'ok'), (8, 'cancel'), (9, 'abort'),
    (10, 'retry'), (11, 'ignore'), (12, 'yes'), (13, 'no'), (14, 'help'), (15, 'keep waiting');

create table tForms (ObjectName text primary key collate nocase, Caption text not null,
                     FontName text not null, FontSize real not null);
insert into tForms values ('dlgOther', 'other form', 'Other Sans', 7.5),
                          ('dlgAddin', 'form & %SP & caption', 'Form Sans', 8.25);

create table tControls (FormName text not null collate nocase, ObjectName text not null collate nocase,
                        "Index" integer not null default -1, Caption text default '-1',
                        FontName text default '-1', FontSize real, ToolTipText text default '-1',
                        primary key (FormName, ObjectName, "Index"));
insert into tControls values
    ('dlgOther', 'lblTrack', -1, 'other form', 'Other Sans', 7.5, 'other form'),
    ('dlgAddin', 'cmdButton', 0, '-1', '-1', null, 'tip of hide'),
    ('dlgAddin', 'cmdButton', 1, '-1', '-1', null, 'tip of update'),
    ('dlgAddin', 'cmdButton', 2, '-1', '-1', null, 'tip of lookup'),
    ('dlgAddin', 'txtTime', 0, '-1', 'Hour Sans', 9, 'tip of hour'),
    ('dlgAddin', 'txtTime', 1, '-1', '-1', null, 'tip of minute'),
    ('dlgAddin', 'txtTime', 2, '-1', '-1', null, 'tip of second'),
    ('dlgAddin', 'txtTime', 3, '-1', '-1', null, 'tip of half'),
    ('dlgAddin', 'updTime', -1, '-1', '-1', null, 'tip of arrows'),
    ('dlgAddin', 'lblTrack', -1, 'follow time', 'Label Sans', 10, '-1'),
    ('dlgAddin', 'lblTrackDate', -1, 'follow date', '-1', null, '-1'),
    ('dlgAddin', 'itmWhatsThis', -1, 'what is this', '-1', null, '-1'),
    ('dlgAddin', 'chkTrack', -1, 'time box', '-1', null, 'tip of time box'),
    ('dlgAddin', 'chkTrackDate', -1, 'date box', '-1', null, 'tip of date box');

create table tPicture (FormName text not null collate nocase, ObjectName text not null collate nocase,
                       "Index" integer not null default -1, FileName text not null default '-1',
                       BasePanel text not null default 'me', BasePanelIndex integer not null default -1);
insert into tPicture (FormName, ObjectName, FileName) values ('dlgOther', 'imgOther', 'other.svg'),
                                                             ('dlgAddin', 'imgBack', 'plain.svg');
)";

constexpr auto commonTexts = R"(
insert into tMsgBox values (0, 'common & %ST', 'vbYesNo', 'common title', 'common.hlp', '75');

create table PictureFileName (ID integer not null, DefaultName text not null collate nocase,
                              FileName text not null, primary key (ID, DefaultName));
insert into PictureFileName values (1, 'plain.svg', 'sky.svg'), (2, 'plain.svg', 'sand.svg'),
                                   (2, 'other.svg', 'meadow.svg');
)";

constexpr auto registerTexts = R"(
create table Registry (AppName text primary key collate nocase, Title text not null, Version text not null,
                       ClassName text not null, Enabled integer not null default -1);
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
