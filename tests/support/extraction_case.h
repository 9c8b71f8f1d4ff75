#pragma once

#include "plugin/opera.h"
#include "tests/support/evidence_builder.h"
#include "tests/support/recording_log.h"
#include "tests/support/result_rows.h"

#include <QStringList>
#include <QTemporaryDir>

/// One evidence source and its result folder, driven through the real controller in the host's
/// calling order, with the log recorded.
class extraction_case
{
public:
    explicit extraction_case(const QString &os_scheme);

    struct account {
        QString system_user;
        QString domain_user = {};
    };

    evidence_builder evidence;
    recording_log log;
    opera controller;
    QList<account> accounts;
    QString source_type;
    int engine_type = 0;

    /// All calls up to and including the table creation.
    void prepare(const QStringList &tables);
    void find() { controller.pub_find_source_file(); }
    void extract() { controller.pub_extract_artifacts(); }
    /// prepare(), find() and extract().
    void run(const QStringList &tables);

    QString result_folder() const { return results_.path() + QStringLiteral("/"); }
    QString plugin_folder() const;
    QString database() const;
    QList<QStringList> rows(const QString &query) const;
    /// The same rows, each as one text with "|" between its columns.
    QStringList lines(const QString &query) const;

private:
    QString os_scheme_;
    QTemporaryDir results_;
};
