#include "models/CloneImport.h"

#include <QJsonObject>
#include <QStringList>

QJsonArray cloneimport::parse(const QString& text, const QString& profile)
{
    QJsonArray clones;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const QStringList fields = line.simplified().split(QLatin1Char('|'));
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
