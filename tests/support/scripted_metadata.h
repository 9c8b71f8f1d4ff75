#pragma once

#include "common/metadata/metadata_platform.h"

#include <QMap>
#include <QSet>

/// Metadata as a test prescribes it, in place of the system's own while this object lives. A value
/// that is released twice, or that was never handed out, ends the test program.
class scripted_metadata : public metadata_platform
{
public:
    struct file {
        QMap<QString, QString> attributes; ///< printed descriptions by attribute name
        position place = {};
    };
    /// A value as the readers of dictionaries get it; one with members is a dictionary.
    struct object {
        QString text;
        QString class_name = {};
        QList<reference> items = {};
        QMap<reference, reference> members = {};
    };

    scripted_metadata();
    ~scripted_metadata() override;
    scripted_metadata(const scripted_metadata &) = delete;
    scripted_metadata &operator=(const scripted_metadata &) = delete;

    /// By absolute path; any other file has no metadata.
    QMap<QString, file> files;

    int handed_out() const { return handed_out_; }
    qsizetype unreleased() const { return live_.size(); }

    reference create_item(const QString &path) override;
    reference copy_attribute(reference item, const QString &name) override;
    QString description(reference value) override;
    void release(reference value) override;
    position picture_position(const QString &path) override;
    QString formatted_date(reference date, reference formatter, const QString &pattern) override;
    reference dictionary_value(reference dictionary, reference key) override;
    QString text(reference value) override;
    QString class_name(reference value) override;
    QList<reference> array_items(reference array) override;

private:
    reference hand_out(const QString &text);

    QSet<reference> live_; ///< each a QString of its own: an item's path, a value's description
    int handed_out_ = 0;
};

/// Printed descriptions in the system's forms.
QString scripted_string(const QString &text);
QString scripted_number(const QString &number);

/// A value of its own for every result column that metadata fills.
scripted_metadata::file every_attribute();
