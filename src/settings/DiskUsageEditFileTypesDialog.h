#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class DiskUsageEditFileTypesDialog;
}

// Edits the extensions of one file-type category, given and returned as its
// display text "Name (.a, .b)". Not modal; deletes itself when closed.
class DiskUsageEditFileTypesDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageEditFileTypesDialog)

public:
    explicit DiskUsageEditFileTypesDialog(QWidget* parent = nullptr);
    ~DiskUsageEditFileTypesDialog() override;

    void setValue(const QString& displayText);
    // What the add dialog hands over, as typed.
    void addExtension(const QString& fileType);

signals:
    void newValue(const QString& value);

private:
    void onDelete();
    void onSave();
    void onAdd();

    std::unique_ptr<Ui::DiskUsageEditFileTypesDialog> ui;
    QString categoryName;
};
