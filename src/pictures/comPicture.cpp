#include "pictures/comPicture.h"

#include <utility>

#include "common/FatalNotice.h"

namespace horalink {

namespace {

using namespace platform;

constexpr std::int32_t noPanelIndex = -1;

std::string_view TypeName(const ObjectRef& control) {
    return control->Class().name;
}

bool IsNotPanelControl(const ObjectRef& control) {
    return TypeName(control) != "SSPanel" && TypeName(control) != "PictureBox";
}

bool PaintsItsOwnBackground(const ObjectRef& control) {
    return TypeName(control) == "SSTree" || TypeName(control) == "SSListBar";
}

// One pass over the rows of a form.
class Painter {
  public:
    Painter(const Services& services, forms::Form& form, std::int16_t index, TextView directory)
        : services_(services), form_(form), index_(index), directory_(directory) {}

    void PaintAll(Database& addInDb, const Collection& names) {
        const Text query =
            u"select ObjectName,Index,FileName,BasePanel,BasePanelIndex from tPicture"
            u" where FormName = '" +
            form_.Name() + u"'";
        const auto rows = addInDb.OpenRecordset(query, RecordsetType::ForwardOnly);
        for (; !rows->EndOfFile(); rows->MoveNext()) PaintRow(*rows, names);
        rows->Close();
    }

    // Shows the panel that was hidden for the change, even if the change failed.
    void ShowHidden() {
        if (const ObjectRef panel = std::exchange(hidden_, nullptr)) Put(panel, "Visible", true);
    }

  private:
    ObjectRef ControlOf(const Recordset& row, TextView nameField, TextView indexField) const {
        return form_.Item(row.Field(nameField).ToText(), row.Field(indexField).ToInteger());
    }

    void PaintRow(const Recordset& row, const Collection& names) {
        const ObjectRef control = ControlOf(row, u"ObjectName", u"Index");
        const Text defaultName = row.Field(u"FileName").ToText();
        if (defaultName == u"-1") return;
        const Text name = index_ == 0 ? defaultName : GetPictureFileName(names, defaultName);
        if (services_.files.Dir(directory_ + name).empty()) return;
        if (PaintsItsOwnBackground(control)) {
            Put(control, "PictureBackground", services_.files.LoadPicture(directory_ + defaultName));
            return;
        }
        const ObjectRef base = BaseOf(row);
        const bool isPanel = base != form_.shared_from_this() && !IsNotPanelControl(base);
        if (isPanel) Hide(base);
        Call(control, "Move", 0.0F, 0.0F, Get(base, "Width"), Get(base, "Height"));
        Put(control, "Picture", services_.files.LoadPicture(directory_ + name));
        if (isPanel) ShowHidden();
    }

    void Hide(const ObjectRef& panel) {
        hidden_ = panel;
        Put(panel, "Visible", false);
    }

    ObjectRef BaseOf(const Recordset& row) const {
        const bool isForm = row.Field(u"BasePanelIndex").ToLong() == noPanelIndex &&
                            row.Field(u"BasePanel").ToText() == u"me";
        return isForm ? form_.shared_from_this() : ControlOf(row, u"BasePanel", u"BasePanelIndex");
    }

    const Services& services_;
    forms::Form& form_;
    std::int16_t index_;
    Text directory_;
    ObjectRef hidden_;
};

Database& Required(Database* database) {
    if (!database) throw RuntimeError(ErrorNumber::ObjectNotSet);
    return *database;
}

// If a default name has two rows, the first one counts.
void AddPictureFileName(Collection& names, const Text& fileName, const Text& defaultName) {
    ErrorState error;
    Skip(error, "naming a picture", [&] { names.Add(fileName, defaultName); });
}

}  // namespace

Text GetPictureFileName(const Collection& names, const Text& defaultName) {
    try {
        return names.Item(defaultName).ToText();
    } catch (const RuntimeError&) {
        return defaultName;
    }
}

void LoadPictureFileNames(Database* commonDb, std::int16_t index, Collection& names) {
    ErrorState error;
    Skip(error, "reading the names of pictures", [&] {
        const Text query = u"Select * From PictureFileName Where  ID = " + DecimalText(index);
        const auto rows = Required(commonDb).OpenRecordset(query, RecordsetType::ForwardOnly);
        for (; !rows->EndOfFile(); rows->MoveNext())
            AddPictureFileName(names, rows->Field(u"FileName").ToText(),
                               rows->Field(u"DefaultName").ToText());
        rows->Close();
    });
}

bool LoadFormPictures(const Services& services, forms::Form& form, Database* addInDb, Database* commonDb,
                      std::int16_t index, TextView directory) {
    Painter painter(services, form, index, directory);
    try {
        Collection names;
        LoadPictureFileNames(commonDb, index, names);
        painter.PaintAll(Required(addInDb), names);
        return true;
    } catch (const RuntimeError& error) {
        ShowShortNotice(services.boxes, error);
        painter.ShowHidden();
        return false;
    }
}

}  // namespace horalink
