#compdef tagwell
_arguments '*:recording:_files -g "*.(wav|WAV)"'
