-- The texts of Horalink in English.
--
-- To translate: copy this folder under the name of the language and change what stands between quotes in
-- the INSERT statements. A quote inside a text is written twice ('').

BEGIN;

-- The application. Title is also the title of message boxes that have none of their own. The box about a
-- busy program and the box about an answer that is not there yet each have two buttons: to go on waiting,
-- and to give up.
CREATE TABLE tProject (
    EXEName                   TEXT PRIMARY KEY COLLATE NOCASE,
    Title                     TEXT NOT NULL,
    OleServerBusyMsgTitle     TEXT,
    OleServerBusyMsgText      TEXT,
    OleRequestPendingMsgTitle TEXT,
    OleRequestPendingMsgText  TEXT
);

INSERT INTO tProject VALUES (
    'Horalink',
    'Horalink',
    'Horalink – Busy',
    'The PBX management program is busy and does not take the request yet. You can go on waiting, or give up and try again later.',
    'Horalink – Waiting for an Answer',
    'The PBX management program has not answered yet. You can go on waiting, or give up. After giving up, read the PBX clock to see whether it was changed.'
);

-- Message boxes.
--
-- Prompt and Title are chains of pieces with & between them. Blanks beside an & are only layout. A piece of
-- its own is one of
--     %CR   a new line        %SP   a blank        %SP4   four blanks        %AND   the character &
--     %ST   a text that the program puts in
-- and any other piece is text. %ST stands alone: other words in its piece would be lost.
--
-- Buttons is a chain of names with + between them and no blanks. Title '-1' stands for the title of the
-- application, Context '-1' for no help topic.
CREATE TABLE tMsgBox (
    MsgNo    INTEGER PRIMARY KEY,
    Prompt   TEXT NOT NULL,
    Buttons  TEXT NOT NULL CHECK (Buttons NOT LIKE '% %'),
    Title    TEXT NOT NULL DEFAULT '-1',
    HelpFile TEXT,
    Context  TEXT NOT NULL DEFAULT '-1'
);

INSERT INTO tMsgBox (MsgNo, Prompt, Buttons, Title) VALUES
    -- The clock was read. %ST: its date and time, in one or two lines.
    (0, 'The clock of the PBX shows: & %CR & %CR & %ST',
        'vbOKOnly+vbInformation', 'PBX Clock'),
    -- The clock was set.
    (1, 'The date and time of the PBX have been updated.',
        'vbOKOnly+vbInformation', 'PBX Clock'),
    -- The clock was not set, or only in part. %ST: the refused items, each on a new line of its own.
    (2, 'The PBX did not accept all of the new date and time: & %CR & %ST & %CR & %CR & Read the PBX clock to see what it shows now, then try again.',
        'vbOKOnly+vbExclamation', 'Update Failed'),
    -- The clock was not read.
    (3, 'The clock of the PBX could not be read. Try again in a moment. If it keeps failing, check the connection to the PBX.',
        'vbOKOnly+vbExclamation', 'Reading Failed'),
    -- The operator turned the calendar past its first or last year; it goes back to that year.
    (4, 'The calendar covers the years 1901 to 2099. Choose a date in this range.',
        'vbOKOnly+vbExclamation', 'Year Out of Range');

-- Short texts, found by their place in the order of ID. Keep all of them, without a gap.
CREATE TABLE tMessages (
    ID      INTEGER PRIMARY KEY CHECK (ID >= 0),
    Caption TEXT
);

INSERT INTO tMessages VALUES
    -- The box for a login that failed, and its title.
    (0, 'The PBX management program could not be reached. Make sure that it is running, then try again.'),
    (1, 'Login Failed'),
    -- The end of a line in box 2, behind what was sent: the PBX gave no answer that can be used.
    (2, '(no valid answer from the PBX)'),
    -- Shown in the management program, with ': ' and its own result behind it.
    (3, 'PBX clock request'),
    -- The title of the window, with the name of the PBX in parentheses behind it.
    (4, 'PBX Clock'),
    -- In no use now.
    (5, 'The PBX clock is ready.'),
    -- Shown in the management program, with ' : <number>' behind it.
    (6, 'The PBX clock request failed');

-- Windows: ObjectName is the window's name in the program. Caption in the language of tMsgBox.
CREATE TABLE tForms (
    ObjectName TEXT PRIMARY KEY COLLATE NOCASE,
    Caption    TEXT NOT NULL,
    FontName   TEXT NOT NULL,
    FontSize   REAL NOT NULL
);

INSERT INTO tForms VALUES ('dlgAddin', 'PBX Clock', 'MS Sans Serif', 8.25);

-- Controls of a window. Index is the number in a row of like controls, or -1. '-1' as Caption, FontName or
-- ToolTipText leaves that as it is; captions and tool tips are plain text.
CREATE TABLE tControls (
    FormName    TEXT NOT NULL COLLATE NOCASE,
    ObjectName  TEXT NOT NULL COLLATE NOCASE,
    "Index"     INTEGER NOT NULL DEFAULT -1,
    Caption     TEXT DEFAULT '-1',
    FontName    TEXT DEFAULT '-1',
    FontSize    REAL,
    ToolTipText TEXT DEFAULT '-1',
    PRIMARY KEY (FormName, ObjectName, "Index")
);

INSERT INTO tControls (FormName, ObjectName, "Index", ToolTipText) VALUES
    ('dlgAddin', 'cmdButton', 0, 'Close this window'),
    ('dlgAddin', 'cmdButton', 1, 'Set the clock of the PBX'),
    ('dlgAddin', 'cmdButton', 2, 'Read the clock of the PBX');

INSERT INTO tControls (FormName, ObjectName, "Index", ToolTipText) VALUES
    ('dlgAddin', 'txtTime', 0, 'Hour'),
    ('dlgAddin', 'txtTime', 1, 'Minute'),
    ('dlgAddin', 'txtTime', 2, 'Second'),
    ('dlgAddin', 'txtTime', 3, 'AM or PM'),
    ('dlgAddin', 'updTime', -1, 'Change the selected part of the time');

INSERT INTO tControls (FormName, ObjectName, Caption, FontName, FontSize, ToolTipText) VALUES
    ('dlgAddin', 'lblTrack', 'Follow the time of this PC', '-1', NULL, '-1'),
    ('dlgAddin', 'lblTrackDate', 'Follow the date of this PC', '-1', NULL, '-1'),
    ('dlgAddin', 'chkTrack', 'Follow the time of this PC', '-1', NULL, 'Follow the time of this PC'),
    ('dlgAddin', 'chkTrackDate', 'Follow the date of this PC', '-1', NULL, 'Follow the date of this PC');

-- Pictures of a window: the control ObjectName shows FileName ('-1' for none) in the size of the control
-- BasePanel, or in the size of the window for 'me'.
CREATE TABLE tPicture (
    FormName       TEXT NOT NULL COLLATE NOCASE,
    ObjectName     TEXT NOT NULL COLLATE NOCASE,
    "Index"        INTEGER NOT NULL DEFAULT -1,
    FileName       TEXT NOT NULL DEFAULT '-1',
    BasePanel      TEXT NOT NULL DEFAULT 'me',
    BasePanelIndex INTEGER NOT NULL DEFAULT -1
);

-- The whole window; the file's name stands for it in the background sets of the common texts.
INSERT INTO tPicture (FormName, ObjectName, FileName) VALUES ('dlgAddin', 'imgBack', 'plain.svg');

COMMIT;
