#pragma once

// The records that the host passes by value through the controller. Their layout is shared with
// the host: member order and types must not change. Members named reserved_* are carried and copied
// but never read by the plug-in.

#include <QList>
#include <QString>

/// One user account of the evidence source.
struct struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account {
    QString system_user; ///< user name, also the name of the account's home folder
    QString domain_user; ///< second name of the account (domain user name); may be empty
};

/// The evidence source that a run reads.
struct struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info {
    QString virtual_source_path;  ///< root of the mounted source; must end in "/"
    QString source_type_internal; ///< kind of source, for example macOS_Home_Directory
    QString os_scheme_display;    ///< text for every os_scheme_display column
    QString os_scheme_internal;   ///< macOS, iOS_UID or winOS; compared exactly
    QString os_version_full;      ///< full OS version of the source
    QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> system_account_list;
    QString reserved_text_7;
    QString reserved_text_8;
    QList<QString> reserved_list_9;
    QString reserved_text_10;
    QString reserved_text_11;
    QString reserved_text_12;
    QString reserved_text_13;
};

/// The examiner's machine; the plug-in copies and clears it but reads nothing of it.
struct struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info {
    QString reserved_text_1;
    QString reserved_text_2;
    bool reserved_flag_3 = false;
    QString reserved_text_4;
    QString reserved_text_5;
};

/// Settings of the run: the debug log.
struct struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info {
    bool reserved_flag_1 = false;
    bool debug_mode_status = false;       ///< nothing is logged when false
    bool debug_print_on_terminal = false; ///< log lines go to the Qt debug stream
    bool debug_print_in_file = false;     ///< log lines go to the debug file
    bool debug_encryption_status = false; ///< lines of the debug file are encrypted
    QString debug_file_path;              ///< debug file, opened for appending
};
