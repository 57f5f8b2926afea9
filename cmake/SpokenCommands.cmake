# Speaks the commands of a training run into WAV files with espeak-ng:
#   cmake -DSOUNDS_DIR=<folder> -P SpokenCommands.cmake
# Run at every build; a file is made again only when this script is newer. Without espeak-ng
# nothing is made and the build goes on: the program is then silent and shows its texts alone.
if(NOT SOUNDS_DIR)
    message(FATAL_ERROR "SpokenCommands.cmake: SOUNDS_DIR is not set")
endif()
file(MAKE_DIRECTORY "${SOUNDS_DIR}")
find_program(ESPEAK_NG espeak-ng)
if(NOT ESPEAK_NG)
    message(STATUS "espeak-ng not found: the training commands are not spoken")
    return()
endif()
# One short word each, so that a command is over before the next tick, 600 ms on, may cut it off.
foreach(word left right good back forward)
    set(wav "${SOUNDS_DIR}/${word}.wav")
    if(NOT EXISTS "${wav}" OR "${CMAKE_CURRENT_LIST_FILE}" IS_NEWER_THAN "${wav}")
        execute_process(
            COMMAND "${ESPEAK_NG}" -v en -s 200 -w "${wav}" "${word}"
            RESULT_VARIABLE failed)
        if(failed)
            file(REMOVE "${wav}")
            message(WARNING "espeak-ng could not speak ${word}.wav")
        endif()
    endif()
endforeach()
