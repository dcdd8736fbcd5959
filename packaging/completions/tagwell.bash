# Completes WAV files and the folders on the way to them, which is all that tagwell takes.
complete -f -o plusdirs -X '!*.[wW][aA][vV]' tagwell
