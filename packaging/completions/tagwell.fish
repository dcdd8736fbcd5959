# WAV files and the folders on the way to them are all that tagwell takes.
complete -c tagwell -k -xa '(__fish_complete_suffix .wav .WAV)'
