-- The help of the dialog.

-- Help, in simple HTML: paragraphs, lists, bold. Tags stay as they are.
CREATE TABLE tTopics (
    ID    INTEGER PRIMARY KEY,
    Title TEXT NOT NULL,
    Body  TEXT NOT NULL
);

-- Shown in place of a topic that is missing.
INSERT INTO tTopics VALUES (0, '', '<p>There is no help on this yet.</p>');

-- The opening page.
INSERT INTO tTopics VALUES (1, 'The clock of a PBX',
'<p>This window reads the clock of the PBX that its title names, and sets it.</p>
<ul>
  <li>The left button asks the PBX for its date and time and shows them in a message.</li>
  <li>The button beside it sends the date and time that you see here to the PBX.</li>
  <li>The button at the right closes the window.</li>
</ul>
<p>At first the window shows the date and time of this PC. Switch off one or both of the check boxes to set another date or time.</p>
<p>For help on the time and on the check boxes, click them with the right mouse button.</p>');

-- The help on the calendar.
INSERT INTO tTopics VALUES (2, 'Calendar',
'<p>The date that is sent to the PBX. Today has a frame, and the chosen day is filled.</p>
<p>While the date follows this PC, the calendar can only be read. Otherwise click a day, and use the arrows in the title to turn to another month or year. Then choose a day: until you do, the clock can''t be updated.</p>
<p>With the keyboard: the arrow keys choose a day, Home and End the first and the last day of the month, Page Up and Page Down turn the months, and with Ctrl the years.</p>
<p>The years from 1901 to 2099 can be set.</p>');

-- The help on the time.
INSERT INTO tTopics VALUES (3, 'Time',
'<p>The time that is sent to the PBX: hours from 1 to 12, minutes, seconds, and AM or PM.</p>
<p>While the time follows this PC, it can only be read. Otherwise click the part that you want to change, and press the arrows beside the field. The keys Up and Down and the mouse wheel do the same. AM and PM are set apart from the hours: going past 12 doesn''t change them.</p>');

-- The help on the check box for the time.
INSERT INTO tTopics VALUES (4, 'Follow the time', '<p>While this box is checked, the time follows the clock of this PC. Clear it to set another time: the time then stands still, and is sent as you see it.</p>');

-- The help on the check box for the date.
INSERT INTO tTopics VALUES (5, 'Follow the date', '<p>While this box is checked, the date follows the clock of this PC, also over midnight. Clear it to choose another day in the calendar.</p>');
