"""The tool for the texts of Horalink: SQL for English, gettext's PO for every other language."""
