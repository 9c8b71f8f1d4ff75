#include "plugin/opera_ios_uid.h"

opera_ios_uid::opera_ios_uid(QWidget *parent)
    : QWidget(parent), extractor_settings([this](qint64 records) {
          Q_EMIT signal_extracted_records_of_plugin_ios_uid(records);
      })
{
}
