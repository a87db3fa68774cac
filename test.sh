#!/usr/bin/env bash
# Runs the tests: ./test.sh
cd "$(dirname "$0")"
source scripts/common.sh
./build.sh native-asan
build/native-asan/bin/unit_tests
