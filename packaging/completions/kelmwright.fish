# Completes the command line of kelmwright in fish.
complete -c kelmwright -l line -x -d 'go to line N of each file that names no line itself'
complete -c kelmwright -l wait -d 'return when the tabs of the files are closed'
complete -c kelmwright -l new-file -d 'open a new, empty tab'
complete -c kelmwright -l open-folder -d 'choose the folder of the project in the window'
complete -c kelmwright -l help -d 'print this text and end'
complete -c kelmwright -l version -d 'print the version and end'
