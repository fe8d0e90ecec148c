# install.cmake - what lies where once the program is installed; packages hold the same

foreach(tool velmor velmor-demo velmor-virtual velmorfs velmorctl)
	if(TARGET ${tool})
		install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
		# The companion's page names every verb, so it comes with the program alone.
		if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/${tool}.1)
			install(FILES packaging/${tool}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
		endif()
		if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/${tool}.bash)
			install(FILES packaging/${tool}.bash RENAME ${tool}
				DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
		endif()
	endif()
endforeach()

install(FILES packaging/velmor.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/velmor.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES packaging/velmor.svg DESTINATION ${icons}/scalable/apps)
foreach(size 16 32 48 64 128)
	install(FILES packaging/icons/${size}.png RENAME velmor.png
		DESTINATION ${icons}/${size}x${size}/apps)
endforeach()

# Both are looked for below /usr/local/lib as well.
install(FILES packaging/60-velmor.rules DESTINATION lib/udev/rules.d)
# A user switches it on: systemctl --user enable --now velmorfs
configure_file(packaging/velmorfs.service.in velmorfs.service @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velmorfs.service DESTINATION lib/systemd/user)

# The links of the README hold there as they do here.
install(FILES README.md CONTRIBUTING.md packaging/deb/copyright packaging/deb/changelog
	DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
