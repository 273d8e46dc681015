UPDATE tForms SET FontName = 'Noto Sans CJK SC', FontSize = 9;
UPDATE tControls SET FontName = 'Noto Sans CJK SC', FontSize = 8.25 WHERE ObjectName IN ('lblTrack', 'lblTrackDate');
