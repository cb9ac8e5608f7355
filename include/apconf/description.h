/* SPDX-License-Identifier: MIT
 *
 * What a host can ask about a command: its keys, their types and where each stands in the data block.
 *
 * Every command is described once, in its package's file; the change handlers, the unset state, the release of heap
 * members and a host's set and no handlers all work from these descriptions.
 */
#ifndef APCONF_DESCRIPTION_H
#define APCONF_DESCRIPTION_H

#include <stdint.h>

#include "apconf/config_data.h"
#include "apconf/packages.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The record that a field's offset counts from. All but the first are chosen by slots of the lookup context. */
enum apconf_scope {
    APCONF_SCOPE_GLOBAL,   /* struct config_data */
    APCONF_SCOPE_RADIO,    /* struct radio_config */
    APCONF_SCOPE_BSS,      /* struct bss_config */
    APCONF_SCOPE_ETHERNET, /* struct ethernet_config */
    APCONF_SCOPE_FTP,      /* struct ftp_config */
    APCONF_SCOPE_VLAN,     /* struct vlan_config */
    APCONF_SCOPE_POOL,     /* struct pool_config */
    APCONF_SCOPE_IP_ACL,   /* struct ip_acl_config */
    APCONF_SCOPE_COUNT
};

/* How a field lies in the block and how it is reported. */
enum apconf_field_kind {
    APCONF_FIELD_VALUE,  /* a value of its ptype */
    APCONF_FIELD_TEXT,   /* a heap text, reported as it is */
    APCONF_FIELD_TYPED,  /* a heap text, reported through its ptype */
    APCONF_FIELD_VALUES, /* `count` values in a row, reported as an array */
    APCONF_FIELD_LIST,   /* pointer and count of a heap array of values, reported as an array */
    APCONF_FIELD_OBJECT  /* a json_object, handed over when it is reported */
};

/* When a field is in force: two rows of a command can share a key, and a selecting field says which one holds. */
enum apconf_field_when {
    APCONF_WHEN_ALWAYS,
    APCONF_WHEN_IP,     /* the command's ADDR_TYPE field is ip */
    APCONF_WHEN_DOMAIN, /* the command's ADDR_TYPE field is domain */
    APCONF_WHEN_HEX,    /* the command's STRING_FORMAT field is hex */
    APCONF_WHEN_PLAIN   /* the command's STRING_FORMAT field is anything else */
};

enum apconf_field_flag {
    APCONF_FIELD_SECRET = 1,    /* not to be shown unless asked for */
    APCONF_FIELD_INDEX = 2,     /* picks the element of an array */
    APCONF_FIELD_UNRELEASED = 4 /* heap member that a commit does not release: it is its setter's */
};

/* One key of a command. */
struct apconf_field {
    const char *key;    /* null: a member without a key, never reported */
    const char *member; /* its path below the scope's prefix, an array index written [i] */
    uint32_t offset;    /* bytes from the scope's record, in the first element of an array */
    uint16_t count;     /* APCONF_FIELD_VALUES: how many */
    uint8_t ptype;      /* see ptype.h */
    uint8_t kind;       /* enum apconf_field_kind */
    uint8_t when;       /* enum apconf_field_when */
    uint8_t flags;      /* enum apconf_field_flag */
};

/* How a command is reported. */
enum apconf_variant {
    APCONF_GROUP,               /* the fields that differ, in one object */
    APCONF_NEGATABLE_GROUP,     /* likewise; "no" while the first field is CONFIG_NEGATED */
    APCONF_UNSET_MEANS_NO,      /* likewise; "no" while the first field is unset */
    APCONF_FLAG,                /* a state word: CONFIG_SET or CONFIG_NEGATED */
    APCONF_FIXED_ARRAY,         /* one object an element that differs */
    APCONF_RESET_ON_CHANGE,     /* likewise; "noall" first when the option word differs */
    APCONF_RESET_ON_DIFFERENCE, /* likewise; "noall" first when any element differs or the option word is
                                   CONFIG_NEGATED; else nothing */
    APCONF_ALWAYS_RESET,        /* likewise; "noall" first in any case */
    APCONF_ONLY_WHEN_REPLACED,  /* likewise; "noall" first, and only when the option word is LIST_REPLACED */
    APCONF_PACKED_LIST,         /* elements up to the first that does not differ; "noall" first when the option word is
                                   LIST_REPLACED */
    APCONF_SELECTED_ENTRY,      /* a fixed array that with an argument reports its first element */
    APCONF_COUNTED_ARRAY,       /* the first `option` elements of an array, without comparison */
    APCONF_NEVER_REPORTED,
    APCONF_PACKAGE_NODE,       /* a sub-package: entered when its area differs */
    APCONF_UNCONDITIONAL_NODE, /* a sub-package: always entered */
    APCONF_RECORD_NODE,        /* a sub-package: one instance a record of a fixed array */
    APCONF_LIST_NODE           /* a sub-package: one instance an element of a variable list */
};

/* An array in the block, or an area of it (count 1). */
struct apconf_array {
    uint32_t offset; /* bytes from the scope's record; of an iterating node: from the enclosing scope's */
    uint32_t step;   /* bytes of an element; 0: a {list, count} pair */
    uint16_t count;
};

#define APCONF_NO_OPTION 0xFFFFFFFFu

/* One record of a package table. */
struct apconf_command {
    const char *name;
    const struct apconf_field *fields;
    uint32_t option;           /* offset of the option or state word, or APCONF_NO_OPTION */
    struct apconf_array array; /* of array variants and package nodes */
    uint8_t variant;           /* enum apconf_variant */
    uint8_t scope;             /* enum apconf_scope; of an iterating node: that of its instances */
    uint8_t field_count;
    uint8_t zero_unset; /* the array is zero when unset; of a packed list its option word too */
};

/* One package: its table and, in the same order, its descriptions. */
struct apconf_package {
    const char *name;
    struct cmd_node *table;
    const struct apconf_command *commands;
    uint32_t command_count;
};

#pragma GCC visibility push(default)

/* All packages, in catalogue order. */
extern const struct apconf_package *const apconf_packages[APCONF_PACKAGE_COUNT];

/* The description of a record of one of the package tables, or null. */
const struct apconf_command *apconf_find_command(const struct cmd_node *node);

/* The record that `lookup` chooses in `block`, or null when there is none: an index outside, a list too short. The
 * global scope needs no `lookup`. */
void *apconf_scope_record(enum apconf_scope scope, struct config_block *block, const struct lookup_ctx *lookup);

/* The text that log lines put before a field's member, such as "root.config.radio[rid].". */
const char *apconf_scope_prefix(enum apconf_scope scope);

/* Bytes of the scope's record. */
uint32_t apconf_scope_size(enum apconf_scope scope);

/* Makes a record of this scope unset. What it held is not released. */
void apconf_unset_record(enum apconf_scope scope, void *record);

/* The scope that a scope's records lie in: radio for BSSes, else global. */
enum apconf_scope apconf_enclosing_scope(enum apconf_scope scope);

/* The lookup slot that chooses the scope's record; null for the global scope. */
uint32_t *apconf_scope_slot(enum apconf_scope scope, struct lookup_ctx *lookup);

/* Bytes that a field takes in the block (of VALUES: all of them). */
uint32_t apconf_field_size(const struct apconf_field *field);

/* The command's selecting field allows this one, in the record (and array element) that `base` points to. */
int apconf_field_applies(const struct apconf_command *command, const struct apconf_field *field, const void *base);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
