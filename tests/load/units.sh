#!/usr/bin/env bash
# units.sh LIBRARY: compares the order in which the units stand in the library, told by one operation of each, with the
# order in which they have to load. Some of them have no load-time code by which a running program could tell.
set -euo pipefail

expected='TORVASensorHandler::init
OTSensorHandler::init
ORDANSensorHandler::init
SensorHandlerType::find
SensorHandler::init
TrovioSensorHandler::init
SensorManager::requestManager
initSensorManager'
actual=$(nm --dynamic --demangle --numeric-sort "$1" | sed -nE 's/^[0-9a-f]+ T Ostrel::(.*)\(.*/\1/p' |
    grep --line-regexp --fixed-strings "$expected")
diff <(echo "$expected") <(echo "$actual") || { echo "The units stand in another order (>) than they have to (<)." >&2 && exit 1; }
