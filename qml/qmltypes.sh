#!/usr/bin/env bash
# What an editor knows of the module: dumps it from the plugin, and writes or checks plugins.qmltypes.
#
# qmltypes.sh --write|--check QMLPLUGINDUMP IMPORT_DIR FILE
set -euo pipefail

action=$1 dump=$2 import_dir=$3 file=$4

# From within, so that the file names no folder.
types=$(cd "$import_dir" && QT_QPA_PLATFORM=offscreen "$dump" -nonrelocatable CanBus 1.0 . 2>/dev/null) || {
    echo "qmltypes: $dump could not load the module from $import_dir" >&2
    exit 1
}
case $action in
    --write) printf '%s\n' "$types" >"$file" ;;
    --check)
        diff -u --label "$file" --label "the plugin" "$file" - <<<"$types" || {
            echo "qmltypes: $file is not what the plugin has: cmake --build BUILD --target write_qmltypes" >&2
            exit 1
        }
        ;;
    *)
        echo "qmltypes: --write or --check, not $action" >&2
        exit 2
        ;;
esac
