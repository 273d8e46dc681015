-- The texts of the add-in in English, fonts and the name of the picture. The sqlite3 shell reads this file as it is.
--
-- A comment is for translators: one ahead of a CREATE TABLE goes with every text of the table, and any other with the
-- texts of the rows that follow it up to the next empty line. Null, '' and '-1' are no texts.
--
-- The add-in finds the rows of tMessages by counting, so their IDs have no gap.

CREATE TABLE tProject (
    EXEName                   TEXT PRIMARY KEY COLLATE NOCASE,
    Title                     TEXT NOT NULL,
    OleServerBusyMsgTitle     TEXT,
    OleServerBusyMsgText      TEXT,
    OleRequestPendingMsgTitle TEXT,
    OleRequestPendingMsgText  TEXT
);

-- Title: the application, and message boxes without a title of their own. The box about a busy program and the box
-- about an answer that has not arrived each have two buttons: "Keep waiting" and "Give up".
INSERT INTO tProject VALUES (
    'Horalink',
    'Horalink',
    'Horalink – Busy',
    'The PBX management program is busy and does not take the request yet. You can go on waiting, or give up and try again later.',
    'Horalink – Waiting for an Answer',
    'The PBX management program has not answered yet. You can go on waiting, or give up. After giving up, read the PBX clock to see whether it was changed.'
);

-- Message box. & parts pieces, and the blanks beside it vanish. A piece of its own, in capitals: %CR is a new line,
-- %SP a blank, %SP4 four blanks, %AND the character &, and %ST what the program puts in, which has to stay.
CREATE TABLE tMsgBox (
    MsgNo    INTEGER PRIMARY KEY,
    Prompt   TEXT NOT NULL,
    Buttons  TEXT NOT NULL CHECK (Buttons NOT LIKE '% %'),
    Title    TEXT NOT NULL DEFAULT '-1',
    HelpFile TEXT,
    Context  TEXT NOT NULL DEFAULT '-1'
);

-- The clock was read. %ST: its date and time, in one or two lines.
INSERT INTO tMsgBox (MsgNo, Buttons, Title, Prompt) VALUES (0, 'vbOKOnly+vbInformation', 'PBX Clock',
    'The clock of the PBX shows: & %CR & %CR & %ST');

-- The clock was set.
INSERT INTO tMsgBox (MsgNo, Buttons, Title, Prompt) VALUES (1, 'vbOKOnly+vbInformation', 'PBX Clock',
    'The date and time of the PBX have been updated.');

-- The clock was not set, or only in part. %ST: the refused items, each on a new line of its own.
INSERT INTO tMsgBox (MsgNo, Buttons, Title, Prompt) VALUES (2, 'vbOKOnly+vbExclamation', 'Update Failed',
    'The PBX did not accept all of the new date and time: & %CR & %ST & %CR & %CR & Read the PBX clock to see what it shows now, then try again.');

-- The clock was not read.
INSERT INTO tMsgBox (MsgNo, Buttons, Title, Prompt) VALUES (3, 'vbOKOnly+vbExclamation', 'Reading Failed',
    'The clock of the PBX could not be read. Try again in a moment. If it keeps failing, check the connection to the PBX.');

-- The operator turned the calendar past its first or last year; it goes back to that year.
INSERT INTO tMsgBox (MsgNo, Buttons, Title, Prompt) VALUES (4, 'vbOKOnly+vbExclamation', 'Year Out of Range',
    'The calendar covers the years 1901 to 2099. Choose a date in this range.');

-- Plain text: & and % have no meaning here.
CREATE TABLE tMessages (
    ID      INTEGER PRIMARY KEY CHECK (ID >= 0),
    Caption TEXT
);

-- A box about a login that failed.
INSERT INTO tMessages VALUES (0, 'The PBX management program could not be reached. Make sure that it is running, then try again.');

-- The title of the box about a login that failed.
INSERT INTO tMessages VALUES (1, 'Login Failed');

-- The end of a line in the box "Update Failed", after what was sent: no usable answer arrived. A % would cut the text.
INSERT INTO tMessages VALUES (2, '(no valid answer from the PBX)');

-- Shown in the management program, which adds ": " and its own result.
INSERT INTO tMessages VALUES (3, 'PBX clock request');

-- The title of the window; the name of the PBX follows in parentheses.
INSERT INTO tMessages VALUES (4, 'PBX Clock');

-- Not in use now.
INSERT INTO tMessages VALUES (5, 'The PBX clock is ready.');

-- Shown in the management program; " : <number>" follows.
INSERT INTO tMessages VALUES (6, 'The PBX clock request failed');

-- A button of message boxes, without an access key.
INSERT INTO tMessages VALUES
    (7, 'OK'), (8, 'Cancel'), (9, 'Abort'), (10, 'Retry'), (11, 'Ignore'), (12, 'Yes'), (13, 'No'), (14, 'Help');

-- A button of the two boxes about waiting; those mention what it does.
INSERT INTO tMessages VALUES (15, 'Keep waiting'), (16, 'Give up');

-- A window. & and % as in message boxes.
CREATE TABLE tForms (
    ObjectName TEXT PRIMARY KEY COLLATE NOCASE,
    Caption    TEXT NOT NULL,
    FontName   TEXT NOT NULL,
    FontSize   REAL NOT NULL
);

-- The title of the window until the name of the PBX is known.
INSERT INTO tForms VALUES ('dlgAddin', 'PBX Clock', 'MS Sans Serif', 8.25);

-- A control of the window. Plain text: & and % have no meaning here.
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

-- A button, which shows a picture.
INSERT INTO tControls (FormName, ObjectName, "Index", ToolTipText) VALUES
    ('dlgAddin', 'cmdButton', 0, 'Close this window'),
    ('dlgAddin', 'cmdButton', 1, 'Set the clock of the PBX'),
    ('dlgAddin', 'cmdButton', 2, 'Read the clock of the PBX');

-- A part of the time.
INSERT INTO tControls (FormName, ObjectName, "Index", ToolTipText) VALUES
    ('dlgAddin', 'txtTime', 0, 'Hour'),
    ('dlgAddin', 'txtTime', 1, 'Minute'),
    ('dlgAddin', 'txtTime', 2, 'Second'),
    ('dlgAddin', 'txtTime', 3, 'AM or PM');

-- The two arrows beside the time.
INSERT INTO tControls (FormName, ObjectName, ToolTipText) VALUES
    ('dlgAddin', 'updTime', 'Change the selected part of the time');

-- Beside a check box, in bold. There is room for about 25 letters.
INSERT INTO tControls (FormName, ObjectName, Caption) VALUES
    ('dlgAddin', 'lblTrack', 'Follow the time of this PC'),
    ('dlgAddin', 'lblTrackDate', 'Follow the date of this PC');

-- The one item of the menu that a right click opens; it shows the help on what was clicked.
INSERT INTO tControls (FormName, ObjectName, Caption) VALUES ('dlgAddin', 'itmWhatsThis', 'What''s This?');

-- A check box. The caption is read aloud by assistive programs.
INSERT INTO tControls (FormName, ObjectName, Caption, ToolTipText) VALUES
    ('dlgAddin', 'chkTrack', 'Follow the time of this PC', 'Follow the time of this PC'),
    ('dlgAddin', 'chkTrackDate', 'Follow the date of this PC', 'Follow the date of this PC');

-- The control ObjectName shows the picture FileName ('-1' for none) in the size of the control BasePanel, or in the
-- size of the window for 'me'.
CREATE TABLE tPicture (
    FormName       TEXT NOT NULL COLLATE NOCASE,
    ObjectName     TEXT NOT NULL COLLATE NOCASE,
    "Index"        INTEGER NOT NULL DEFAULT -1,
    FileName       TEXT NOT NULL DEFAULT '-1',
    BasePanel      TEXT NOT NULL DEFAULT 'me',
    BasePanelIndex INTEGER NOT NULL DEFAULT -1
);

-- The background sets of the common texts replace it by this name.
INSERT INTO tPicture (FormName, ObjectName, FileName) VALUES ('dlgAddin', 'imgBack', 'plain.svg');
