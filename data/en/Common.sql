-- The texts and picture names that all add-ins of the family share.

BEGIN;

-- Message boxes: see tMsgBox of the add-in's own texts for the language of Prompt, Buttons and Title.
CREATE TABLE tMsgBox (
    MsgNo    INTEGER PRIMARY KEY,
    Prompt   TEXT NOT NULL,
    Buttons  TEXT NOT NULL CHECK (Buttons NOT LIKE '% %'),
    Title    TEXT NOT NULL DEFAULT '-1',
    HelpFile TEXT,
    Context  TEXT NOT NULL DEFAULT '-1'
);

-- Background sets: in set ID, the picture FileName takes the place of the picture DefaultName.
CREATE TABLE PictureFileName (
    ID          INTEGER NOT NULL,
    DefaultName TEXT NOT NULL COLLATE NOCASE,
    FileName    TEXT NOT NULL,
    PRIMARY KEY (ID, DefaultName)
);

-- Set 0 is the one without rows: the default pictures themselves.
INSERT INTO PictureFileName VALUES
    (1, 'plain.svg', 'sky.svg'),
    (2, 'plain.svg', 'sand.svg'),
    (3, 'plain.svg', 'meadow.svg');

COMMIT;
