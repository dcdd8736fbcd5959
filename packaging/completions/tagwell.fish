# WAV files and the folders on the way to them are all that tagwell takes.
complete -c tagwell -xa '(complete -C "./any_file "(commandline -ct) | string replace -r "\t.*" "" | string match -ri ".*(?:\.wav|/)(?!.)")'
