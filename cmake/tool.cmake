# The tool, room by room, ground first. A room links what stands below it and nothing else, so that a call upwards finds
# no function. Pure cores call nothing of Windows: they are what is fuzzed and benchmarked.
add_library(veltra_cores STATIC
  base/command_line.cpp
  base/profile_section.cpp
  base/text.cpp
  base/xml_writer.cpp
  board/codec_download.cpp
  firmware/boot_sequence.cpp
  firmware/flash_image.cpp
  firmware/hex_file.cpp
  link/frame.cpp
  switches/press_filter.cpp
)

if(WIN32)
  target_sources(veltra_cores PRIVATE base/stack_guard.cpp)
endif()

function(veltra_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;BELOW" ${ARGN})
  add_library(veltra_${name} STATIC ${ROOM_SOURCES})
  list(TRANSFORM ROOM_BELOW PREPEND veltra_)
  target_link_libraries(veltra_${name} PUBLIC ${ROOM_BELOW})
endfunction()

veltra_room(base BELOW cores SOURCES
  base/ansi_text.cpp
  base/debug_output.cpp
  base/whole_file.cpp
)

veltra_room(system BELOW base SOURCES
  system/copied_data.cpp
  system/diagnostic_log.cpp
  system/folders.cpp
  system/injected_input.cpp
  system/language.cpp
  system/library_binding.cpp
  system/maker_applications.cpp
  system/message_box.cpp
  system/power_off.cpp
  system/registry.cpp
  system/send_while_alive.cpp
  system/sent_messages.cpp
  system/sounds.cpp
  system/start_program.cpp
  system/tray_icons.cpp
  system/window_requests.cpp
  system/windows_version.cpp
)

# The port and its monitor thread stand by themselves: ThreadSanitizer looks at these alone.
veltra_room(port BELOW base SOURCES link/serial_input.cpp)
veltra_room(link BELOW port system SOURCES
  link/identity_store.cpp
  link/identity_updates.cpp
  link/infrared.cpp
  link/pic_comm.cpp
  link/send_queue.cpp
)

veltra_room(board BELOW system SOURCES
  board/amplifiers.cpp
  board/audio_endpoint.cpp
  board/board_library.cpp
  board/codec.cpp
  board/endpoint_callback.cpp
  board/expander.cpp
  board/i2c.cpp
  board/platform_info.cpp
  board/volume.cpp
)

veltra_room(power BELOW link SOURCES
  power/battery_alarms.cpp
  power/battery_details.cpp
  power/battery_status.cpp
  power/flight_mode_notice.cpp
  power/outside_tools.cpp
)

veltra_room(firmware BELOW link SOURCES
  firmware/bootloader.cpp
  firmware/read_hex_file.cpp
  firmware/update_guard.cpp
)

veltra_room(switches BELOW board link SOURCES
  switches/actions.cpp
  switches/button_profile.cpp
  switches/function_tables.cpp
  switches/joystick.cpp
  switches/macro_plugin.cpp
  switches/mouse_filter.cpp
  switches/profile_encoding.cpp
  switches/switch_events.cpp
  switches/switch_indicator.cpp
  switches/switch_outputs.cpp
)

veltra_room(report BELOW board power SOURCES report/device_report.cpp)

veltra_room(tool BELOW report switches firmware power SOURCES
  app/app_state.cpp
  app/device_operations.cpp
  app/main_window.cpp
  app/pic_messages.cpp
  app/pic_receiver.cpp
  app/power_events.cpp
  app/settings_store.cpp
  app/startup.cpp
  app/tray_menu.cpp
  app/dialogs/control_names.cpp
  app/dialogs/dialog_items.cpp
  app/dialogs/file_box.cpp
  app/dialogs/firmware_dialog.cpp
  app/dialogs/options_dialog.cpp
  app/dialogs/options_lists.cpp
  app/dialogs/options_rows.cpp
  app/dialogs/power_meter.cpp
)

veltra_by_itself(app/dialogs/firmware_dialog.cpp app/dialogs/options_dialog.cpp
  app/dialogs/power_meter.cpp)

# veltra_ships(TARGET): what users get carries no symbols; they stand in symbols/, and debuggers know by the file's sum
# which belong to it.
function(veltra_ships target)
  set(symbols ${CMAKE_BINARY_DIR}/symbols/$<TARGET_FILE_NAME:${target}>.debug)
  set(objcopy ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${VELTRA_MINGW_PREFIX}-objcopy)  # the time in the header
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/symbols
    COMMAND ${objcopy} --only-keep-debug $<TARGET_FILE:${target}> ${symbols}
    COMMAND ${objcopy} --strip-all --add-gnu-debuglink=${symbols} $<TARGET_FILE:${target}>
    VERBATIM)
endfunction()

if(WIN32)
  # The entry is in the executable itself: nothing refers to it, so that a library would not bring it.
  add_executable(veltratool WIN32 app/entry.cpp)
  veltra_resources(veltratool resources/veltratool.rc)
  target_link_libraries(veltra_base PUBLIC version comctl32 shell32 comdlg32 winmm ole32 advapi32 user32 gdi32)
  target_link_libraries(veltratool PRIVATE veltra_tool)
  target_link_options(veltratool PRIVATE -municode)
  veltra_ships(veltratool)
else()
  target_sources(veltra_tool PRIVATE app/entry.cpp)
  target_link_libraries(veltra_base PUBLIC pal)
endif()

# For the technician in front of a tablet: it asks the running tool.
add_library(probe_text STATIC tools/probe_text.cpp)
target_link_libraries(probe_text PUBLIC veltra_base)
add_executable(toolprobe tools/probe_surroundings.cpp tools/toolprobe.cpp)
target_link_libraries(toolprobe PRIVATE probe_text)
if(WIN32)
  veltra_resources(toolprobe tools/toolprobe.rc)
  veltra_ships(toolprobe)
else()
  target_sources(toolprobe PRIVATE tools/probe_host.cpp)
endif()

# For the people who make firmware.
add_executable(hexinfo tools/hexinfo.cpp tools/update_forecast.cpp)
target_link_libraries(hexinfo PRIVATE veltra_cores)
if(WIN32)
  veltra_resources(hexinfo tools/hexinfo.rc)
  veltra_ships(hexinfo)
endif()
