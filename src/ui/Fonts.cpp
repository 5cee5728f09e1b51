#include "ui/Fonts.h"

#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QString>

namespace
{

enum class Use
{
    Always,
    WhereMissing ///< the system's own font of that name has priority
};

struct Substitution
{
    const char *wanted;
    const char *registered;
    Use use;
};

// clang-format off
constexpr Substitution kSubstitutions[] = {
    // wanted           registered          use
    { "DS-Digital",     "Ovryn Segment",    Use::Always },
    { "Space Age",      "Ovryn Wide",       Use::Always },
    { "Tessmar_KuHei",  "Ovryn Hei",        Use::Always },
    { "Arial",          "Ovryn Sans",       Use::WhereMissing },
    // A system in another language lists the same font under its Latin name.
    { "微软雅黑",        "Microsoft YaHei",  Use::WhereMissing },
    { "微软雅黑",        "Ovryn Hei",        Use::WhereMissing },
};

constexpr const char *kFontFiles[] = {
    ":/font/font/kuhei.TTF",
    ":/font/font/SpaceAge.ttf",
    ":/font/font/DS-Digital.TTF",
    ":/font/font/OvrynSans.ttf",
    ":/font/font/OvrynSans-Bold.ttf",
};
// clang-format on

} // namespace

void substituteFontFamilies()
{
    const QStringList installed = QFontDatabase().families();
    for (const Substitution &row : kSubstitutions) {
        const QString wanted = QString::fromUtf8(row.wanted);
        if (row.use == Use::Always || !installed.contains(wanted, Qt::CaseInsensitive))
            QFont::insertSubstitution(wanted, QString::fromUtf8(row.registered));
    }
}

void registerApplicationFonts()
{
    for (const char *name : kFontFiles) {
        QFile file(QString::fromUtf8(name));
        if (file.open(QIODevice::ReadOnly))
            QFontDatabase::addApplicationFontFromData(file.readAll());
    }
}
