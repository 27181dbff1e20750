#include "app/QmlTypes.h"

#include "models/CloneInfo.h"
#include "models/DeviceConfig.h"
#include "models/DeviceInfo.h"
#include "models/FarmActionConfig.h"
#include "models/FarmProfile.h"
#include "models/GlobalConfig.h"
#include "models/ListRecord.h"
#include "models/LongText.h"
#include "models/ReportsByDate.h"
#include "models/UserInfo.h"

#include <QtQml>

namespace {

template <class... Records>
void registerRecords()
{
    (qmlRegisterUncreatableType<Records>("Velstrand", 1, 0, Records::staticMetaObject.className(),
                                         QStringLiteral("Records are made by the model.")),
     ...);
}

} // namespace

void registerQmlTypes()
{
    registerRecords<CloneInfo, DeviceConfig, DeviceInfo, FarmActionConfig, FarmProfile, GlobalConfig,
                    ListRecord, ReportsByDate, UserInfo>();
    qmlRegisterType<LongText>("Velstrand", 1, 0, "LongText");
}
