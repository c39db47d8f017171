#!/bin/bash
# The two commands as a newcomer calls them. Without a display ./run makes files and says where.
set -u
cd "$(dirname -- "$0")/.."
passed=0
failed=0
check() {  # what, condition...
    local what=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
    else
        echo "failed: $what"
        failed=$((failed + 1))
    fi
}

unset DISPLAY WAYLAND_DISPLAY
./run examples/greensleeves.gui > /dev/null 2>&1  # builds what has to be built
start=$(date +%s%N)
said=$(./run examples/greensleeves.gui 2>&1)
spent=$((($(date +%s%N) - start) / 1000000))
check "./run succeeds without a display" test $? = 0
check "a second ./run takes under 2 s, not $spent ms" test "$spent" -lt 2000
check "./run says what it made" grep -q greensleeves.pdf <<< "$said"
for file in measures.log gui pdf mid; do
    made=$(grep -o "[^ ]*greensleeves\.$file" <<< "$said" | head -n 1)
    check "./run made greensleeves.$file" test -s "$made"
done
check "the tune was written back" cmp -s examples/greensleeves.gui build/headless/greensleeves.gui
check ".ci/run calls ./test" grep -q '/test' .ci/run
echo "$passed passed, $failed failed"
[ $failed = 0 ]
