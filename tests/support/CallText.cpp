#include "support/CallText.h"

#include "simulated/Hex.h"

#include <QStringList>

#include <cstring>

using nlohmann::ordered_json;
using simulated::Call;
using simulated::Operation;

namespace
{

QString text(const ordered_json &value)
{
    return QString::fromStdString(value.get<std::string>());
}

qint64 whole(const ordered_json &value)
{
    return value.get<qint64>();
}

/// "0xA0" as "A0", in two digits at least.
QString bareHex(const ordered_json &value)
{
    return text(value).mid(2).rightJustified(2, QLatin1Char('0'));
}

QString start(const Call &call)
{
    const QString name = operationText(call.operation);
    switch (call.handle) {
    case Call::Handle::None:
        return name;
    case Call::Handle::Known:
        return name + QStringLiteral(" gpu%1").arg(call.card.value());
    case Call::Handle::Null:
        return name + QStringLiteral(" null");
    case Call::Handle::Unknown:
        break;
    }
    return name + QStringLiteral(" unknown");
}

QString joined(QStringList parts, const Call &call)
{
    parts.removeAll(QString());
    if (call.status != NVAPI_OK)
        parts << QStringLiteral("-> %1").arg(call.status);
    return parts.join(QLatin1Char(' '));
}

bool isTransfer(Operation operation)
{
    return operation == Operation::NvAPI_I2CRead || operation == Operation::NvAPI_I2CReadEx ||
           operation == Operation::NvAPI_I2CWrite || operation == Operation::NvAPI_I2CWriteEx;
}

bool isRead(Operation operation)
{
    return operation == Operation::NvAPI_I2CRead || operation == Operation::NvAPI_I2CReadEx;
}

// ---- with names and units ----

QString policyName(qint64 policy)
{
    switch (policy) {
    case 1:
        return QStringLiteral("manual");
    case 0x20:
        return QStringLiteral("automatic");
    default:
        return QStringLiteral("policy %1").arg(policy);
    }
}

QString coolerLevels(const ordered_json &arguments)
{
    constexpr qint64 kAllCoolers = 7;
    QStringList parts;
    for (const ordered_json &level : arguments["levels"])
        parts << QStringLiteral("fan %1 % %2").arg(whole(level["level"])).arg(policyName(whole(level["policy"])));
    const qint64 cooler = whole(arguments["cooler"]);
    return (cooler == kAllCoolers ? QString() : QStringLiteral("cooler %1 ").arg(cooler)) +
           parts.join(QStringLiteral(", "));
}

QString clockName(qint64 domain)
{
    return domain == 0   ? QStringLiteral("graphics")
           : domain == 4 ? QStringLiteral("memory")
                         : QStringLiteral("clock %1").arg(domain);
}

QString pstates(const ordered_json &arguments)
{
    QStringList parts;
    for (const ordered_json &state : arguments["pstates"]) {
        // offsets on another state than the first are out of the ordinary
        const QString name = state["id"] == 0 ? QString() : QStringLiteral("P%1 ").arg(whole(state["id"]));
        for (const ordered_json &clock : state["clocks"])
            parts << name + QStringLiteral("%1 offset %2 kHz")
                                .arg(clockName(whole(clock["domain"])))
                                .arg(whole(clock["delta_kHz"]));
        for (const ordered_json &voltage : state["voltages"])
            parts << name + QStringLiteral("voltage offset %1 uV").arg(whole(voltage["delta_uV"]));
    }
    if (arguments.contains("overVoltages")) {
        for (const ordered_json &voltage : arguments["overVoltages"])
            parts << QStringLiteral("over-voltage %1 uV").arg(whole(voltage["delta_uV"]));
    }
    return parts.join(QStringLiteral(", "));
}

QString powerLimits(const ordered_json &arguments)
{
    QStringList parts;
    for (const ordered_json &entry : arguments["entries"])
        parts << QStringLiteral("power limit %1 %").arg(double(whole(entry["power"])) / 1000);
    return parts.join(QStringLiteral(", "));
}

QString temperatureLimits(const ordered_json &arguments)
{
    QStringList parts;
    for (const ordered_json &entry : arguments["entries"]) {
        const bool priority = entry.contains("flags") && (whole(entry["flags"]) & 1) != 0;
        parts << QStringLiteral("temperature limit %1 C").arg(double(whole(entry["temperature"])) / 256) +
                     (priority ? QStringLiteral(" first") : QString());
    }
    return parts.join(QStringLiteral(", "));
}

QString transfer(const Call &call)
{
    const ordered_json &arguments = call.arguments;
    QString line;
    if (arguments.contains("port"))
        line = QStringLiteral("port %1 ").arg(whole(arguments["port"]));
    line += text(arguments["address"]);
    if (isRead(call.operation))
        return line + QStringLiteral(" %1 bytes").arg(whole(arguments["size"]));
    return line + QStringLiteral(": ") + (arguments.contains("data") ? text(arguments["data"]) : QString());
}

QString named(const Call &call)
{
    const ordered_json &arguments = call.arguments;
    if (arguments.is_null())
        return {};
    switch (call.operation) {
    case Operation::NvAPI_GPU_SetCoolerLevels:
        return coolerLevels(arguments);
    case Operation::NvAPI_GPU_SetPstates20:
        return pstates(arguments);
    case Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus:
        return powerLimits(arguments);
    case Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus:
        return temperatureLimits(arguments);
    case Operation::NvAPI_DriverEntry_B23B70EE:
        return QStringLiteral("restore entry %1").arg(whole(arguments["value"]));
    case Operation::NvAPI_I2CRead:
    case Operation::NvAPI_I2CReadEx:
    case Operation::NvAPI_I2CWrite:
    case Operation::NvAPI_I2CWriteEx:
        return transfer(call);
    default:
        break;
    }
    QStringList parts; // "cooler 7" and the like
    for (const auto &[name, value] : arguments.items())
        parts << QString::fromStdString(name) + QLatin1Char(' ') + QString::fromStdString(value.dump());
    return parts.join(QLatin1Char(' '));
}

// ---- as bytes ----

QString rawTransfer(const Call &call)
{
    const ordered_json &arguments = call.arguments;
    QString line = QStringLiteral("addr=%1 reg=%2 regSize=%3 size=%4 speed=%5")
                       .arg(bareHex(arguments["address"]),
                            arguments.contains("reg") ? text(arguments["reg"]) : QStringLiteral("missing"))
                       .arg(whole(arguments["regSize"]))
                       .arg(whole(arguments["size"]))
                       .arg(bareHex(arguments["speed"]));
    if (arguments.contains("speedKhz"))
        line += QStringLiteral("/%1").arg(whole(arguments["speedKhz"]));
    if (arguments.contains("port"))
        line += QStringLiteral(" port=%1/%2").arg(whole(arguments["port"])).arg(whole(arguments["portSet"]));
    if (const qint64 mask = whole(arguments["displayMask"]))
        line += QStringLiteral(" mask=%1").arg(mask);
    if (const qint64 ddc = whole(arguments["ddc"]))
        line += QStringLiteral(" ddc=%1").arg(ddc);
    if (arguments.contains("words"))
        line += QStringLiteral(" words=%1,%2").arg(whole(arguments["words"][0])).arg(whole(arguments["words"][1]));
    if (!isRead(call.operation) && arguments.contains("data"))
        line += QStringLiteral(" data=") + text(arguments["data"]);
    return line;
}

/// Every word after the version word that is not 0.
QString words(std::vector<quint8> record)
{
    QStringList list;
    record.resize((record.size() + sizeof(quint32) - 1) / sizeof(quint32) * sizeof(quint32));
    for (std::size_t offset = sizeof(quint32); offset < record.size(); offset += sizeof(quint32)) {
        qint32 word = 0;
        std::memcpy(&word, record.data() + offset, sizeof word);
        if (word)
            list << QStringLiteral("[%1]=%2").arg(offset).arg(word);
    }
    return list.join(QLatin1Char(' '));
}

/// The arguments beside handle and record.
QString plainArguments(const ordered_json &arguments)
{
    QStringList list;
    if (arguments.contains("display"))
        list << QStringLiteral("display%1").arg(whole(arguments["display"]));
    for (const char *name : {"status", "index", "sensor", "cooler", "value"}) {
        if (arguments.contains(name))
            list << QStringLiteral("%1=%2").arg(QLatin1String(name)).arg(whole(arguments[name]));
    }
    return list.join(QLatin1Char(' '));
}

} // namespace

QString operationText(Operation operation)
{
    return QString::fromLatin1(simulated::operationName(operation)).remove(QLatin1String("NvAPI_"));
}

QString versionText(const Call &call)
{
    return call.version ? QString::fromStdString(simulated::hexWord(*call.version)) : QStringLiteral("none");
}

QString callText(const Call &call)
{
    return joined({start(call), named(call)}, call);
}

QString orderText(const Call &call)
{
    return joined({named(call)}, call);
}

QString rawCallText(const Call &call)
{
    if (!call.version)
        return joined({start(call), plainArguments(call.arguments)}, call);
    if (isTransfer(call.operation))
        return joined({start(call), versionText(call), call.arguments.is_null() ? QString() : rawTransfer(call)},
                      call);
    return joined({start(call), plainArguments(call.arguments), versionText(call), words(call.record)}, call);
}
