#pragma once

#include "scan/ScanHistory.h"

#include <QDialog>

#include <memory>

namespace Ui {
class CompareDialog;
}

// Chooses the older scan to compare the results with: one of the scans kept
// of the folder, newest first, by when it was made and the size of its file,
// or any scan file (plain or gzip JSON).
class CompareDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CompareDialog)

public:
    CompareDialog(QList<ScanHistory::Entry> kept, const QString& folder, QWidget* parent = nullptr);
    ~CompareDialog() override;

    // Once accepted: the scan file to compare with.
    [[nodiscard]] const QString& chosenFile() const { return chosen; }

private:
    void fill();
    void onSelectionChanged();
    void onOtherFile();
    void onAccepted();

    std::unique_ptr<Ui::CompareDialog> ui;
    QList<ScanHistory::Entry> scans;
    QString chosen;
};
