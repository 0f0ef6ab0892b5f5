# Turns CHANGELOG.md into a Debian changelog. Wants the variables package and maintainer.

# Prints the item that was gathered, in lines of at most 80 columns.
function end_item(    words, count, line, i) {
    count = split(item, words, " ")
    line = "  *"
    for (i = 1; i <= count; ++i) {
        if (length(line) + 1 + length(words[i]) > 80) {
            print line
            line = "   "
        }
        line = line " " words[i]
    }
    if (count > 0) {
        print line
    }
    item = ""
}

function end_release() {
    end_item()
    if (date != "") {
        print "\n -- " maintainer "  " date "\n"
    }
}

/^## / {
    end_release()
    day = substr($3, 2, 10)
    release = $2
    sub(/.*-/, "", release)
    # A minute a release: releases of one day must follow each other.
    command = "LC_ALL=C date --utc --rfc-email --date='" day " " int(release) " minutes'"
    if (NF != 3 || $3 != "(" day ")" || day !~ /^[0-9-]+$/ || (command | getline date) <= 0) {
        print "CHANGELOG.md: no version and day in: " $0 >"/dev/stderr"
        date = ""
        exit status = 1
    }
    close(command)
    print package " (" $2 ") unstable; urgency=medium\n"
}
/^- / {
    end_item()
    item = substr($0, 3)
}
/^  [^ ]/ {
    item = item " " $0
}

END {
    if (status) {
        exit status
    }
    end_release()
}
