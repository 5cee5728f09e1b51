#include "updater/UpdaterTexts.h"

namespace
{

struct Text
{
    const char *english;
    const char *chinese;
};

QString in(LanguageType language, const Text &text)
{
    return QString::fromUtf8(language == kLanguageChinese ? text.chinese : text.english);
}

Text stageText(UpdateRun::Stage stage)
{
    switch (stage) {
    case UpdateRun::Stage::Checking:
        return {"Checking the new version", "正在检查新版本"};
    case UpdateRun::Stage::Fetching:
        return {"Downloading", "正在下载"};
    case UpdateRun::Stage::Preparing:
        return {"Checking the downloaded files", "正在检查下载的文件"};
    case UpdateRun::Stage::WaitingForProgram:
        return {"Waiting until OvrynDeck II has ended", "正在等待OvrynDeck II退出"};
    case UpdateRun::Stage::Exchanging:
        return {"Installing. Please don't switch off the computer.", "正在安装，请不要关闭电脑。"};
    case UpdateRun::Stage::Done:
        return {"Installed. OvrynDeck II starts now.", "安装完成，正在启动OvrynDeck II。"};
    case UpdateRun::Stage::Failed:
        break;
    }
    return {"The update was not installed", "更新未安装"};
}

Text failureText(UpdateFailure failure)
{
    switch (failure) {
    case UpdateFailure::None:
        break;
    case UpdateFailure::NoKey:
        return {"This copy of the updater can't check signatures. Please download the new version from the website.",
                "此更新程序无法检查签名，请前往官网下载新版本。"};
    case UpdateFailure::NoServer:
        return {"The update server can't be reached. Please check the connection and try again.",
                "无法连接更新服务器，请检查网络后重试。"};
    case UpdateFailure::NotSigned:
        return {"The signature of the update is wrong. Nothing was installed. Please try again later.",
                "更新的签名不正确，没有安装任何文件，请稍后重试。"};
    case UpdateFailure::BadManifest:
        return {"The list of the update can't be read. Please download the new version from the website.",
                "无法读取更新列表，请前往官网下载新版本。"};
    case UpdateFailure::OtherProduct:
        return {"The update is not for this program. Nothing was installed. Please download the new version from the "
                "website.",
                "此更新不适用于本程序，没有安装任何文件，请前往官网下载新版本。"};
    case UpdateFailure::NotNewer:
        return {"The offered version is not newer than the installed one. Please close this window.",
                "服务器上的版本不比已安装的版本新，请关闭此更新程序。"};
    case UpdateFailure::NeedsHands:
        return {"This version is too old for an automatic update. Please download the new version from the website.",
                "当前版本太旧，不支持自动更新，请前往官网下载新版本。"};
    case UpdateFailure::Damaged:
        return {"A downloaded file is damaged. Nothing was installed. Please try again.",
                "下载的文件已损坏，没有安装任何文件，请重试。"};
    case UpdateFailure::DiskFull:
        return {"The disk is full, or the program's folder can't be written. Please make room and try again.",
                "磁盘已满或程序文件夹无法写入，请清理磁盘后重试。"};
    case UpdateFailure::ProgramRuns:
        return {"OvrynDeck II is still running. Please close it and try again.",
                "OvrynDeck II仍在运行，请关闭后重试。"};
    case UpdateFailure::ExchangeFailed:
        return {"A file could not be replaced. The old version is in place. Close other programs and try again.",
                "有文件无法替换，已恢复旧版本。请关闭其他程序后重试。"};
    case UpdateFailure::HalfDone:
        return {"A file could not be replaced or put back. Close other programs and try again.",
                "有文件无法替换也无法恢复，请关闭其他程序后重试。"};
    }
    return {"", ""};
}

QString megabytes(qint64 bytes)
{
    constexpr double kBytesPerMegabyte = 1024.0 * 1024.0;
    return QString::number(double(bytes) / kBytesPerMegabyte, 'f', 1);
}

} // namespace

QString UpdaterTexts::title(LanguageType language)
{
    return in(language, {"OvrynDeck II update", "OvrynDeck II 更新"});
}

QString UpdaterTexts::stage(UpdateRun::Stage stage, LanguageType language)
{
    return in(language, stageText(stage));
}

QString UpdaterTexts::failure(UpdateFailure failure, const QString &path, LanguageType language)
{
    const QString text = in(language, failureText(failure));
    return path.isEmpty() ? text : text + QStringLiteral("\n(") + path + QLatin1Char(')');
}

QString UpdaterTexts::progress(qint64 bytes, qint64 total, int secondsLeft, LanguageType language)
{
    constexpr int kSecondsPerMinute = 60;
    QString text = in(language, {"%1 of %2 MB", "%1 / %2 MB"}).arg(megabytes(bytes), megabytes(total));
    if (secondsLeft >= 2 * kSecondsPerMinute)
        text += in(language, {", %1 minutes left", "，还剩%1分钟"}).arg(secondsLeft / kSecondsPerMinute);
    else if (secondsLeft > 0)
        text += in(language, {", %1 s left", "，还剩%1秒"}).arg(secondsLeft);
    return text;
}

QString UpdaterTexts::purpose(LanguageType language)
{
    return in(language, {"This program updates OvrynDeck II. OvrynDeck II starts it when there is a new version.",
                         "此程序用于更新OvrynDeck II，有新版本时由OvrynDeck II启动。"});
}

QString UpdaterTexts::cancelCaption(LanguageType language)
{
    return in(language, {"Cancel", "取消"});
}

QString UpdaterTexts::retryCaption(LanguageType language)
{
    return in(language, {"Retry", "重试"});
}

QString UpdaterTexts::closeCaption(LanguageType language)
{
    return in(language, {"Close", "关闭"});
}

QString UpdaterTexts::progressName(LanguageType language)
{
    return in(language, {"Downloaded", "已下载"});
}
