#pragma once

#include <QTreeView>

// What the lists of the results share: rows not to be edited, and the row the
// user selected.
class ResultView : public QTreeView {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ResultView)

public:
    explicit ResultView(QWidget* parent = nullptr);
    ~ResultView() override;

    // The first cell selected; none before a model is shown or without a selection.
    [[nodiscard]] QModelIndex selectedRow() const;

protected:
    // What the files take on disk stands beside their size.
    void showBesideSize(int onDiskColumn, int sizeColumn);
};
