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
    // Connected by hand; not a slot, which the by-name connection would take
    // for one of an object called "newFileExtensionValue".
    void on_newFileExtensionValue(const QString& fileType);

signals:
    void newValue(const QString& value);

private slots:
    void on_DeleteButton_clicked();
    void on_CancelButton_clicked();
    void on_SaveButton_clicked();
    void on_AddButton_clicked();

private:
    std::unique_ptr<Ui::DiskUsageEditFileTypesDialog> ui;
    QString categoryName;
};
