-- What wixl cannot express. packaging/msi executes each line; VERSION is replaced.

-- Properties that a user may set, and which reach the part that runs with all rights.
UPDATE `Property` SET `Value` = 'WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED;SHAREDDIR;START;ADDTOPATH' WHERE `Property` = 'SecureCustomProperties'

-- Without its version, a program would not replace one that has a version.
UPDATE `File` SET `Version` = 'VERSION.0', `Language` = '1033' WHERE `File` = 'Service.exe'
UPDATE `File` SET `Version` = 'VERSION.0', `Language` = '1033' WHERE `File` = 'Ziptra.exe'
DELETE FROM `MsiFileHash` WHERE `File_` = 'Service.exe'
DELETE FROM `MsiFileHash` WHERE `File_` = 'Ziptra.exe'

-- PATH of all users, if asked for.
UPDATE `Component` SET `Condition` = 'ADDTOPATH="1"' WHERE `Component` = 'Path'
CREATE TABLE `Environment` (`Environment` CHAR(72) NOT NULL, `Name` CHAR(255) NOT NULL LOCALIZABLE, `Value` CHAR(255) LOCALIZABLE, `Component_` CHAR(72) NOT NULL PRIMARY KEY `Environment`)
INSERT INTO `Environment` (`Environment`, `Name`, `Value`, `Component_`) VALUES ('Path', '=-*PATH', '[~];[INSTALLDIR]', 'Path')
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('RemoveEnvironmentStrings', 3300)
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('WriteEnvironmentStrings', 5200)

-- What the machine has is looked up only where the package is installed: what a window of the user looks up does not get there, and then is not looked up again.
DELETE FROM `InstallUISequence` WHERE `Action` = 'AppSearch'

-- The start and the place on PATH stay as they are, unless something else is asked for. Windows lets users repair what is installed: they must not change the start.
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('KeepDemand', '(NOT START OR Installed) AND PRESENTSTART="#3"', 110)
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('KeepAuto', '(NOT START OR Installed) AND PRESENTSTART="#2" AND NOT PRESENTDELAY="#1"', 111)
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('UseDelayed', 'NOT START OR (Installed AND NOT PRESENTSTART="#3" AND (NOT PRESENTSTART="#2" OR PRESENTDELAY="#1"))', 112)
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('KeepPath', 'NOT ADDTOPATH AND PRESENTPATH', 113)

-- First of all, the machine is examined: neither a request that cannot be met nor a service that others have made changes anything.
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('CheckMachine', 1410)

-- The service stops before anything is changed, and starts again if something fails later. 3393 is the type of a rollback whose failure is ignored.
UPDATE `CustomAction` SET `Type` = 3393 WHERE `Action` = 'RestartService'
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('RestartService', 'SERVICERUNS AND ($Service=2 OR $Service=3)', 1511)
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('StopService', 'SERVICERUNS AND ($Service=2 OR $Service=3)', 1512)

-- What has been prepared so far is done here. So if the service does not stop, there is nothing else to take back, which Wine would do without having done it.
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('InstallExecute', 'SERVICERUNS AND ($Service=2 OR $Service=3)', 1513)

-- A removal continues with the tool's, unless a newer version is in place and removes this one.
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('RemoveService', 'REMOVE="ALL" AND PRESENTVERSION=ProductVersion', 1811)

-- A first installation that fails later takes back what the tool has set. Windows undoes the actions in reverse, so that this comes before the service is deleted, with which the key goes that says what is ours.
UPDATE `CustomAction` SET `Type` = 3393 WHERE `Action` = 'UndoService'
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('UndoService', 'NOT Installed AND NOT WIX_UPGRADE_DETECTED', 5801)

-- The service is complete, and the older version removed, before the service starts.
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('RepairService', 'NOT REMOVE="ALL"', 5802)
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('InstallExecuteAgain', 5810)
UPDATE `InstallExecuteSequence` SET `Sequence` = 5820 WHERE `Action` = 'RemoveExistingProducts'
