-- The texts and names of pictures that all add-ins of the family share.

-- As in the texts of the add-in.
CREATE TABLE tMsgBox (
    MsgNo    INTEGER PRIMARY KEY,
    Prompt   TEXT NOT NULL,
    Buttons  TEXT NOT NULL CHECK (Buttons NOT LIKE '% %'),
    Title    TEXT NOT NULL DEFAULT '-1',
    HelpFile TEXT,
    Context  TEXT NOT NULL DEFAULT '-1'
);

-- Background sets: in set ID, the picture FileName replaces the picture DefaultName. Set 0 has no rows and shows the
-- default pictures.
CREATE TABLE PictureFileName (
    ID          INTEGER NOT NULL,
    DefaultName TEXT NOT NULL COLLATE NOCASE,
    FileName    TEXT NOT NULL,
    PRIMARY KEY (ID, DefaultName)
);
INSERT INTO PictureFileName VALUES
    (1, 'plain.svg', 'sky.svg'), (2, 'plain.svg', 'sand.svg'), (3, 'plain.svg', 'meadow.svg');
