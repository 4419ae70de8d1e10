# For tests written in bash: source this, call "check" for each thing to prove, end with "conclude".
# What a check prints goes into $scratch/output and $scratch/errors, and is shown if it fails.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

check() { # check WHAT COMMAND...
    local what=$1
    shift
    if "$@" >"$scratch/output" 2>"$scratch/errors"; then
        echo "passed   $what"
    else
        echo "FAILED   $what"
        sed 's/^/         /' "$scratch/output" "$scratch/errors"
        failed=$((failed + 1))
    fi
}

skip() { # skip WHAT WHY
    echo "skipped  $1: $2"
}

conclude() {
    [ "$failed" -eq 0 ]
    exit
}
