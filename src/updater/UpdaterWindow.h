#pragma once

#include "ui/Ovryn_LanguageTable.h"
#include "updater/RemainingTime.h"

#include <QDialog>
#include <QElapsedTimer>

class QLabel;
class QProgressBar;
class QPushButton;
class UpdateRun;

/// Shows an update that runs: what is being done, how far it is, and after a failure what to do. Cancel until files
/// are exchanged; Retry and Close after a failure. It closes itself when the update is installed. GUI thread.
class UpdaterWindow : public QDialog
{
    Q_OBJECT

public:
    /// Borrows the run, which outlives the window.
    UpdaterWindow(UpdateRun &run, LanguageType language, QWidget *parent = nullptr);

public slots:
    /// Cancel, Close and Escape: closes unless files are being exchanged.
    void reject() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override; ///< the window can be moved by its body
    void closeEvent(QCloseEvent *event) override;

private slots:
    void onStageChanged();
    void onProgressed();
    void onRetry();

private:
    void build();
    void showStage();

    UpdateRun &run;
    const LanguageType language;
    QLabel *lblTitle = nullptr;
    QLabel *lblStage = nullptr;
    QLabel *lblDetail = nullptr;
    QProgressBar *progressBar = nullptr;
    QPushButton *btnRetry = nullptr;
    QPushButton *btnCancel = nullptr; ///< Close after a failure
    QElapsedTimer clock;
    RemainingTime remaining;
};
