#pragma once

#include "Settings.h"

#include <QWidget>

#include <memory>

class QTreeWidgetItem;

namespace Ui {
class DiskUsageOptionsForm;
}

// The "Options" tab: which file-type categories a scan sorts files into and
// with which extensions, which folders scans leave out, whether finished scans
// are kept and how many, and whether the program is light, dark or as the
// desktop asks. The page edits a copy of the settings; changes collect in it
// (its trees and its own list of excluded folders) and are handed back once
// "Save" has stored them, so a scan never sees them unsaved. An enabled "Save"
// means there are unsaved changes. Deleting the saved scans is no setting: it
// is done at once, by the screen that keeps them.
class DiskUsageOptionsForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageOptionsForm)

public:
    explicit DiskUsageOptionsForm(QWidget* parent = nullptr);
    ~DiskUsageOptionsForm() override;

    // Fills the page from the settings.
    void edit(const Settings& settings);
    [[nodiscard]] bool hasUnsavedChanges() const;
    // Stores the page's state as the settings and hands them back through
    // saved(). When they cannot be stored the user is told, the changes stay
    // unsaved, and false is returned.
    bool save();
    // The scans kept so far, as the screen that keeps them counts them.
    void showSavedScans(int count, qint64 bytes);
    // Answers deleteSavedScans() with what is left: tells the user that the
    // scans are gone, or how many stayed.
    void savedScansDeleted(int left, qint64 leftBytes);

signals:
    // The settings as stored, which scans then use.
    void saved(const Settings& settings);
    // The user asked to delete the saved scans and confirmed it. The page
    // knows no more of them than their count: the screen that keeps them
    // deletes them and answers with savedScansDeleted().
    void deleteSavedScans();

private:
    void onFileTypeEdited(const QString& text);
    void onFileTypeClicked(QTreeWidgetItem* item);
    void onExcludedFolderClicked(QTreeWidgetItem* item);
    void onOneDriveToggled();
    void onAppearanceChosen();
    void onHistoryChanged();
    void onDeleteSavedScans();
    void onRemoveFolder();
    void onOpenOneDrive();
    void onAddFolder();
    void onEditFileType();
    void onRestoreFileTypes();
    void showFileTypes(const QList<FileTypeCategory>& catalogue);
    void showExclusions();
    void showHistory(const HistoryChoice& history);
    [[nodiscard]] HistoryChoice chosenHistory() const;
    void writeSettings(bool excludeOneDrive);

    std::unique_ptr<Ui::DiskUsageOptionsForm> ui;
    // As saved last: what the trees' check boxes are compared with.
    Settings stored;
    QList<ExcludeEntry> exclusions;
    bool loaded = false;
    int savedScanCount = 0;
    qint64 savedScanBytes = 0;
};
