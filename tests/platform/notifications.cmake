# Desktop notifications (against the test desktop's dunst) and event sounds
# (libcanberra into ALSA's null device).
quillix_add_gtest(notification_tests ${CMAKE_CURRENT_LIST_DIR}/freedesktop_notifier_test.cpp)
quillix_add_gtest(sound_player_tests ${CMAKE_CURRENT_LIST_DIR}/canberra_sound_player_test.cpp)
