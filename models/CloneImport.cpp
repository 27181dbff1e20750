#include "models/CloneImport.h"

#include <QJsonObject>
#include <QStringList>
#include <QVector>

QJsonArray CloneImport::parse(const QString& text, const QString& profile)
{
    QJsonArray clones;
    const QVector<QStringRef> lines = text.splitRef(QLatin1Char('\n'));
    for (const QStringRef& line : lines) {
        const QStringList fields = line.toString().simplified().split(QLatin1Char('|'));
        if (fields.size() < 2)
            continue;
        QJsonObject clone{{QStringLiteral("uid"), fields[0]},
                          {QStringLiteral("password"), fields[1]},
                          {QStringLiteral("farm_profile"), profile}};
        if (fields.size() > 2)
            clone.insert(QStringLiteral("secretkey"), fields[2]);
        clones.append(clone);
    }
    return clones;
}
