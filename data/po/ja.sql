UPDATE tForms SET FontName = 'Noto Sans CJK JP', FontSize = 9;
UPDATE tControls SET FontName = 'Noto Sans CJK JP', FontSize = 8.25 WHERE ObjectName IN ('lblTrack', 'lblTrackDate');
