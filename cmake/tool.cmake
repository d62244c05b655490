# The tool, room by room. Pure cores call nothing of Windows: they are what is fuzzed and benchmarked.
add_library(veltra_cores STATIC
  base/profile_section.cpp
  base/text.cpp
  app/command_line.cpp
  board/codec_download.cpp
  firmware/boot_sequence.cpp
  firmware/flash_image.cpp
  firmware/hex_file.cpp
  link/frame.cpp
  report/xml_writer.cpp
)

# The port and its monitor thread: ThreadSanitizer looks at these alone.
add_library(veltra_port STATIC base/ansi_text.cpp link/serial_input.cpp)
target_link_libraries(veltra_port PUBLIC veltra_cores)

add_library(veltra_tool STATIC
  base/debug_output.cpp
  app/app_state.cpp
  app/copied_data.cpp
  app/diagnostic_log.cpp
  app/dialog_items.cpp
  app/folders.cpp
  app/language.cpp
  app/main_window.cpp
  app/power_events.cpp
  app/settings_store.cpp
  app/sounds.cpp
  app/startup.cpp
  app/tray_icons.cpp
  app/tray_menu.cpp
  app/windows_version.cpp
  board/amplifiers.cpp
  board/audio_endpoint.cpp
  board/board_library.cpp
  board/codec.cpp
  board/expander.cpp
  board/i2c.cpp
  board/volume.cpp
  board/platform_info.cpp
  firmware/bootloader.cpp
  firmware/firmware_dialog.cpp
  firmware/read_hex_file.cpp
  firmware/update_guard.cpp
  link/identity_store.cpp
  link/identity_updates.cpp
  link/infrared.cpp
  link/pic_comm.cpp
  link/pic_messages.cpp
  link/pic_receiver.cpp
  link/send_queue.cpp
  power/battery_alarms.cpp
  power/battery_details.cpp
  power/battery_status.cpp
  power/device_operations.cpp
  power/flight_mode_notice.cpp
  power/outside_tools.cpp
  power/power_meter.cpp
  power/power_off.cpp
  report/device_report.cpp
  switches/actions.cpp
  switches/button_profile.cpp
  switches/function_tables.cpp
  switches/injected_input.cpp
  switches/joystick.cpp
  switches/joystick_library.cpp
  switches/macro_library.cpp
  switches/macro_plugin.cpp
  switches/maker_applications.cpp
  switches/mouse_filter.cpp
  switches/mouse_filter_library.cpp
  switches/profile_encoding.cpp
  switches/start_program.cpp
  switches/options_dialog.cpp
  switches/options_lists.cpp
  switches/options_rows.cpp
  switches/switch_events.cpp
  switches/switch_indicator.cpp
  switches/switch_outputs.cpp
)
target_link_libraries(veltra_tool PUBLIC veltra_port)

if(WIN32)
  # The entry is in the executable itself: nothing refers to it, so that a library would not bring it.
  add_executable(veltratool WIN32 app/entry.cpp)
  veltra_resources(veltratool resources/veltratool.rc)
  target_link_libraries(veltratool PRIVATE veltra_tool version comctl32 shell32 comdlg32 winmm ole32 advapi32 user32 gdi32)
  target_link_options(veltratool PRIVATE -municode -s)
else()
  target_sources(veltra_tool PRIVATE app/entry.cpp)
  target_link_libraries(veltra_port PUBLIC pal)
endif()

# For the technician in front of a tablet: the program asks the running tool, its texts are tested natively.
add_library(probe_text STATIC tools/probe_text.cpp)
target_link_libraries(probe_text PUBLIC veltra_cores)
if(WIN32)
  add_executable(toolprobe tools/toolprobe.cpp)
  target_link_libraries(toolprobe PRIVATE probe_text user32)
  target_link_options(toolprobe PRIVATE -s)
endif()

# For the people who make firmware.
add_executable(hexinfo tools/hexinfo.cpp)
target_link_libraries(hexinfo PRIVATE veltra_cores)
