#pragma once

#include "ExcludeEntry.h"
#include "FileTypeCategory.h"

#include <QWidget>

#include <memory>

class QTreeWidgetItem;

namespace Ui {
class DiskUsageOptionsForm;
}

// The "Options" tab: which file-type categories a scan sorts files into and
// with which extensions, and which folders scans leave out. Changes collect in
// the page (its trees and its own copy of the excluded folders) and become
// settings on "Save", so a scan never sees them unsaved; an enabled "Save"
// means there are unsaved changes.
class DiskUsageOptionsForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageOptionsForm)

public:
    explicit DiskUsageOptionsForm(QWidget* parent = nullptr);
    ~DiskUsageOptionsForm() override;

    // Fills the page from the settings once the catalogue has been loaded.
    void loadSettings();
    [[nodiscard]] bool hasUnsavedChanges() const;
    // Writes the page's state as the settings, which scans then use. When the
    // settings cannot be written the user is told, the changes stay unsaved,
    // and false is returned.
    bool save();
    // Connected by hand to the editor; not a slot, which the by-name
    // connection would take for one of an object called "newFileTypeValue".
    void on_newFileTypeValue(const QString& text);

private slots:
    void on_saveButton_clicked();
    void on_treeWidget_itemClicked(QTreeWidgetItem* item, int column);
    void on_excludeOneDrivecheckBox_toggled(bool checked);
    void on_excludeRemoveButton_clicked();
    void on_excludeTreeWidget_itemClicked(QTreeWidgetItem* item, int column);
    void on_openOneDriveButton_clicked();
    void on_excludeAddButton_clicked();
    void on_FileTypesEditButton_clicked();
    void on_FileTypesRestoreButton_clicked();

private:
    void showFileTypes(const QList<FileTypeCategory>& catalogue);
    void showExclusions();
    void writeSettings(bool excludeOneDrive);

    std::unique_ptr<Ui::DiskUsageOptionsForm> ui;
    QList<ExcludeEntry> exclusions;
    bool loaded = false;
};
