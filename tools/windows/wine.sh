#!/bin/bash
# wine.sh PROGRAM [ARGUMENT...]: runs it under Wine with the toolkit's variables, which Wine keeps from its programs. The
# build names it as what runs the test programs.
settings=""
for name in $(compgen -e QT_); do
    settings+="set $name=${!name}&& "
done
program=${1//\//\\}
shift
exec wine cmd /c "$settings$program $*"
