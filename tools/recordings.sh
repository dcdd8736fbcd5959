# Where real recordings are for the tests. Sourced from the project's root folder by ./test and .ci/run.

# Sets TAGWELL_RECORDINGS, if it is not set, to a folder named "recordings" beside the checkout that holds the files that
# the tests know; says how to get them if there is none.
find_recordings()
{
    local folder
    [ -z "${TAGWELL_RECORDINGS:-}" ] || return 0
    for folder in ../recordings ../shared/recordings; do
        if [ -d "$folder/recorder-a" ]; then
            TAGWELL_RECORDINGS="$(cd "$folder" && pwd)"
            export TAGWELL_RECORDINGS
            return 0
        fi
    done
    cat <<'END'
There are no real recordings beside this checkout, so their tests will skip. CONTRIBUTING.md lists the files and where
they come from. Put them into ../recordings, or name their folder in TAGWELL_RECORDINGS; nothing is written into it.
END
}
