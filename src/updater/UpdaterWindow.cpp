#include "updater/UpdaterWindow.h"

#include "ui/Reds.h"
#include "ui/UiStyle.h"
#include "updater/UpdateRun.h"
#include "updater/UpdaterTexts.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>

namespace
{

constexpr QSize kWindowSize(460, 230);
constexpr int kEdgeMargin = 24;
constexpr int kProgressSteps = 1000;

QString windowSheet()
{
    return UiStyle::updateLog() + UiStyle::actionButton() +
           Reds::inSheet(QStringLiteral(
               "QLabel{color:rgb(230,230,230);font-size:13px;}"
               "QLabel#lblTitle{color:white;font-size:18px;}"
               "QProgressBar{border:1px solid rgba(@glass,150);background-color:rgba(0,0,0,120);max-height:10px;}"
               "QProgressBar::chunk{background-color:rgb(@gauge);}"
               "QPushButton{min-width:88px;}"
               "QPushButton:focus{border:1px solid white;}"));
}

} // namespace

UpdaterWindow::UpdaterWindow(UpdateRun &updateRun, LanguageType textLanguage, QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint), run(updateRun), language(textLanguage)
{
    setWindowTitle(UpdaterTexts::title(language));
    setStyleSheet(windowSheet());
    setAttribute(Qt::WA_TranslucentBackground);
    setFixedSize(kWindowSize);
    build();
    clock.start();
    connect(&run, &UpdateRun::stageChanged, this, &UpdaterWindow::onStageChanged);
    connect(&run, &UpdateRun::progressed, this, &UpdaterWindow::onProgressed);
    connect(btnRetry, &QPushButton::clicked, this, &UpdaterWindow::onRetry);
    connect(btnCancel, &QPushButton::clicked, this, &UpdaterWindow::reject);
    showStage();
}

void UpdaterWindow::build()
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(kEdgeMargin, kEdgeMargin, kEdgeMargin, kEdgeMargin);
    column->setSpacing(12);
    const auto addLabel = [&](const char *name) {
        auto *label = new QLabel(this);
        label->setObjectName(QString::fromLatin1(name));
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        column->addWidget(label);
        return label;
    };
    lblTitle = addLabel("lblTitle");
    lblTitle->setText(UpdaterTexts::title(language));
    lblStage = addLabel("lblStage");
    progressBar = new QProgressBar(this);
    progressBar->setObjectName(QStringLiteral("progressBar"));
    progressBar->setTextVisible(false);
    progressBar->setAccessibleName(UpdaterTexts::progressName(language));
    column->addWidget(progressBar);
    lblDetail = addLabel("lblDetail");
    column->addStretch();

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    const auto addButton = [&](const char *name) {
        auto *button = new QPushButton(this);
        button->setObjectName(QString::fromLatin1(name));
        buttons->addWidget(button);
        return button;
    };
    btnRetry = addButton("btnRetry");
    btnRetry->setText(UpdaterTexts::retryCaption(language));
    btnCancel = addButton("btnCancel");
    column->addLayout(buttons);
}

void UpdaterWindow::showStage()
{
    const UpdateRun::Stage stage = run.stage();
    const bool failed = stage == UpdateRun::Stage::Failed;
    const bool fetching = stage == UpdateRun::Stage::Fetching;
    lblStage->setText(UpdaterTexts::stage(stage, language));
    lblDetail->setText(failed ? UpdaterTexts::failure(run.failure(), run.failedPath(), language) : QString());
    progressBar->setVisible(!failed);
    progressBar->setRange(0,
                          fetching || stage == UpdateRun::Stage::Done ? kProgressSteps : 0); // 0: moves without end
    if (stage == UpdateRun::Stage::Done)
        progressBar->setValue(kProgressSteps);
    btnRetry->setVisible(failed);
    btnCancel->setText(failed ? UpdaterTexts::closeCaption(language) : UpdaterTexts::cancelCaption(language));
    btnCancel->setEnabled(stage != UpdateRun::Stage::Exchanging && stage != UpdateRun::Stage::Done);
    (failed ? btnRetry : btnCancel)->setFocus();
}

void UpdaterWindow::onStageChanged()
{
    remaining.restart();
    showStage();
    if (run.stage() == UpdateRun::Stage::Fetching)
        onProgressed();
    if (run.stage() == UpdateRun::Stage::Done)
        accept();
}

void UpdaterWindow::onProgressed()
{
    const qint64 total = run.bytesToFetch();
    remaining.add(clock.elapsed(), run.bytesFetched());
    progressBar->setValue(total > 0 ? int(run.bytesFetched() * kProgressSteps / total) : kProgressSteps);
    lblDetail->setText(UpdaterTexts::progress(run.bytesFetched(), total, remaining.secondsFor(total), language));
}

void UpdaterWindow::onRetry()
{
    run.start();
}

void UpdaterWindow::reject()
{
    if (run.cancel())
        QDialog::reject();
}

void UpdaterWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // `reject` closes, where that is possible
    reject();
}

void UpdaterWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    UiStyle::paintDialogGlass(painter, size());
}

void UpdaterWindow::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && windowHandle())
        windowHandle()->startSystemMove();
}
