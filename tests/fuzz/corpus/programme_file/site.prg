<?xml version="1.0" encoding="UTF-8"?>
<!-- Quorvel commissioning tool: texts and lists of every language, switches,
     daylight-saving defaults and the working programme. Messages and list rows
     are read by position: keep comments out of them. -->
<Configuration>
  <Messages>
    <Traduction Nom="English">
      <Message><Cle>Quorvel Absent</Cle><Texte>Quorvel not responding</Texte></Message>
      <Message><Cle>Are You Sure ? </Cle><Texte>Restart the device in its bootloader. Are you sure?</Texte></Message>
      <Message><Cle>Etes vous sur de vouloir changer la version actuelle ? </Cle><Texte>Are you sure you want to change the current firmware version?</Texte></Message>
      <Message><Cle>Ouvrir Fichier HEX</Cle><Texte>Open HEX file</Texte></Message>
      <Message><Cle>Invalid File Name (QUORVEL_VX.XX.hex)</Cle><Texte>Invalid file name: the firmware file must be named QUORVEL_VX.XX.hex</Texte></Message>
      <Message><Cle>Invalid Version Number</Cle><Texte>Invalid version number</Texte></Message>
      <Message><Cle>This version number is lower than version Number 2.70, you need QUORVEL_V2.70.hex</Cle><Texte>This version is lower than 2.70. You need QUORVEL_V2.70.hex or a later version.</Texte></Message>
      <Message><Cle>Warning : you must Upgrade to Firmware V2.70 or higher </Cle><Texte>Warning: firmware must be upgraded to V2.70 or higher</Texte></Message>
      <Message><Cle> The connected device firmware must be updated to v2.70 or higher. Would you like to proceed with firmware update?</Cle><Texte>The firmware of the connected device must be updated to V2.70 or higher. Proceed with the firmware update?</Texte></Message>
      <Message><Cle> Unsupported hardware. Please contact Tessaluk</Cle><Texte>Unsupported hardware. Please contact Tessaluk.</Texte></Message>
      <Message><Cle>erreur de saisie</Cle><Texte>Invalid entry: please type a number</Texte></Message>
      <Message><Cle>La saisie doit être comprise entre </Cle><Texte>The value must be between</Texte></Message>
      <Message><Cle> et </Cle><Texte>and</Texte></Message>
      <Message><Cle>La saisie n'est pas numérique</Cle><Texte>The value is not a number</Texte></Message>
      <Message><Cle>Programmation terminée</Cle><Texte>Programming complete</Texte></Message>
      <Message><Cle>Les anciennes valeurs seront écrasées</Cle><Texte>The values stored in the device will be overwritten.</Texte></Message>
      <Message><Cle>Date and Time Set</Cle><Texte>Date and time set</Texte></Message>
      <Message><Cle>Voulez Détruire le fichier </Cle><Texte>Do you want to delete the file</Texte></Message>
      <Message><Cle>Programmation des sorties</Cle><Texte>Output programming</Texte></Message>
      <Message><Cle>Electro Vanne Bist.</Cle><Texte>Bistable valve</Texte></Message>
      <Message><Cle>Close</Cle><Texte>Closed</Texte></Message>
      <Message><Cle>Open</Cle><Texte>Open</Texte></Message>
      <Message><Cle>Activer</Cle><Texte>Activate</Texte></Message>
      <Message><Cle>FrameSortie</Cle><Texte>Output name</Texte></Message>
      <Message><Cle>FrameCondition</Cle><Texte>Condition</Texte></Message>
      <Message><Cle>Page</Cle><Texte>Page</Texte></Message>
      <Message><Cle>Programme</Cle><Texte>Program</Texte></Message>
      <Message><Cle>Power on reset</Cle><Texte>Power-on resets</Texte></Message>
      <Message><Cle>CRC errors</Cle><Texte>CRC errors</Texte></Message>
      <Message><Cle>Brown out errors</Cle><Texte>Brown-out errors</Texte></Message>
      <Message><Cle>Watch dog errors</Cle><Texte>Watchdog errors</Texte></Message>
      <Message><Cle>Soft Resets</Cle><Texte>Software resets</Texte></Message>
      <Message><Cle>Vous devez saisir un N° de commande</Cle><Texte>You must enter an order number</Texte></Message>
      <Message><Cle>Lire</Cle><Texte>Read parameters</Texte></Message>
      <Message><Cle>Ecrire</Cle><Texte>Write parameters</Texte></Message>
      <Message><Cle>Sortir</Cle><Texte>Quit</Texte></Message>
      <Message><Cle>Label16</Cle><Texte>Page</Texte></Message>
      <Message><Cle>Label17</Cle><Texte>Buffer</Texte></Message>
      <Message><Cle>FrameInformations</Cle><Texte>Information</Texte></Message>
      <Message><Cle>Version</Cle><Texte>--</Texte></Message>
      <Message><Cle>LabelVersion</Cle><Texte>Version</Texte></Message>
      <Message><Cle>NumeroSerie</Cle><Texte>--</Texte></Message>
      <Message><Cle>Label1</Cle><Texte>Serial No.</Texte></Message>
      <Message><Cle>DateProgrammation</Cle><Texte>--</Texte></Message>
      <Message><Cle>Label2</Cle><Texte>Programming date</Texte></Message>
      <Message><Cle>txtCurrentTime</Cle><Texte>--</Texte></Message>
      <Message><Cle>lblCurrentTime</Cle><Texte>Date and time</Texte></Message>
      <Message><Cle>Batterie</Cle><Texte>--</Texte></Message>
      <Message><Cle>LabelBatterie</Cle><Texte>Battery voltage (V)</Texte></Message>
      <Message><Cle>VMIN</Cle><Texte>Min.</Texte></Message>
      <Message><Cle>VMAX</Cle><Texte>Max.</Texte></Message>
      <Message><Cle>FrameManualActionDelay</Cle><Texte>Manual action delay</Texte></Message>
      <Message><Cle>LabelManualActionDelayTime</Cle><Texte>(2...65535 s)</Texte></Message>
      <Message><Cle>DaylightFrame</Cle><Texte>Daylight saving</Texte></Message>
      <Message><Cle>EnableDaylightSaving</Cle><Texte>Enable</Texte></Message>
      <Message><Cle>FrameSummer</Cle><Texte>Summer</Texte></Message>
      <Message><Cle>FrameWinter</Cle><Texte>Winter</Texte></Message>
      <Message><Cle>LabelsemaineEte</Cle><Texte>Week</Texte></Message>
      <Message><Cle>LabelMoisEte</Cle><Texte>Month</Texte></Message>
      <Message><Cle>LabelJour</Cle><Texte>Day</Texte></Message>
      <Message><Cle>Labelheure</Cle><Texte>Hour</Texte></Message>
      <Message><Cle>Labeldelta</Cle><Texte>Daylight saving adjustment (min)</Texte></Message>
      <Message><Cle>SetTime</Cle><Texte>Set time</Texte></Message>
      <Message><Cle>FrameMaintenance</Cle><Texte>Maintenance</Texte></Message>
      <Message><Cle>Seuilbatterie</Cle><Texte>Min. battery</Texte></Message>
      <Message><Cle>LabelVBatMin</Cle><Texte>(V)</Texte></Message>
      <Message><Cle>RazCtn</Cle><Texte>Reset CPU counters</Texte></Message>
      <Message><Cle>Labelctn</Cle><Texte>Counter</Texte></Message>
      <Message><Cle>LabelILS</Cle><Texte>ILS</Texte></Message>
      <Message><Cle>CheckClockSpeed</Cle><Texte>Fast clock</Texte></Message>
      <Message><Cle>LabelCalibrationHorloge</Cle><Texte>Clock calibration</Texte></Message>
      <Message><Cle>CommandCalibrationCLK</Cle><Texte>Calibrate</Texte></Message>
      <Message><Cle>ForceBoot</Cle><Texte>Force bootloader</Texte></Message>
      <Message><Cle>Programmer</Cle><Texte>Program</Texte></Message>
      <Message><Cle>Label15</Cle><Texte>Enter the serial number</Texte></Message>
      <Message><Cle>FrameMonitoringSorties</Cle><Texte>Output monitoring</Texte></Message>
      <Message><Cle>NomSortie</Cle><Texte>Output</Texte></Message>
      <Message><Cle>Continu</Cle><Texte>Continuous reading</Texte></Message>
      <Message><Cle>ArretProgramme</Cle><Texte>Stop program</Texte></Message>
      <Message><Cle>FrameMessage</Cle><Texte>Message</Texte></Message>
      <Message><Cle>MnuMode</Cle><Texte>Settings</Texte></Message>
      <Message><Cle>mnurapport</Cle><Texte>Report</Texte></Message>
      <Message><Cle>nmuBootLoad</Cle><Texte>Change firmware version</Texte></Message>
      <Message><Cle>mnuPLC</Cle><Texte>Programming</Texte></Message>
      <Message><Cle>MnuConnect</Cle><Texte>Connect</Texte></Message>
      <Message><Cle>mnuAide</Cle><Texte>?</Texte></Message>
      <Message><Cle>mnuApropos</Cle><Texte>About</Texte></Message>
      <Message><Cle>AIDE_Lire</Cle><Texte>Read all parameters from the device</Texte></Message>
      <Message><Cle>AIDE_Ecrire</Cle><Texte>Write the program, the daylight saving rule and the manual action delay, then restart the device</Texte></Message>
      <Message><Cle>AIDE_Sortir</Cle><Texte>Save the daylight saving rule and quit</Texte></Message>
      <Message><Cle>AIDE_ListeLangues</Cle><Texte>Language of the application</Texte></Message>
      <Message><Cle>AIDE_Madate</Cle><Texte>Date whose day of the week is sent when the clock is set</Texte></Message>
      <Message><Cle>AIDE_Liste</Cle><Texte>Selection list</Texte></Message>
      <Message><Cle>AIDE_ValeurManualAction</Cle><Texte>Duration of a manual action, 2 to 65535 seconds</Texte></Message>
      <Message><Cle>AIDE_EnableDaylightSaving</Cle><Texte>Switch the automatic daylight saving change on or off</Texte></Message>
      <Message><Cle>AIDE_Semaine</Cle><Texte>Week of the month on which the clock changes</Texte></Message>
      <Message><Cle>AIDE_Mois</Cle><Texte>Month in which the clock changes</Texte></Message>
      <Message><Cle>AIDE_Jour</Cle><Texte>Day of the week on which the clock changes</Texte></Message>
      <Message><Cle>AIDE_Heure</Cle><Texte>Hour at which the clock changes</Texte></Message>
      <Message><Cle>AIDE_DaylightAdjustment</Cle><Texte>Clock shift in minutes</Texte></Message>
      <Message><Cle>AIDE_SetTime</Cle><Texte>Set the device clock to the PC time and write the daylight saving rule</Texte></Message>
      <Message><Cle>AIDE_Seuilbatterie</Cle><Texte>Write the low battery threshold</Texte></Message>
      <Message><Cle>AIDE_MinBat</Cle><Texte>Low battery threshold in volts</Texte></Message>
      <Message><Cle>AIDE_RazCtn</Cle><Texte>Clear the five event counters of the device</Texte></Message>
      <Message><Cle>AIDE_ctn_text</Cle><Texte>Event counter value</Texte></Message>
      <Message><Cle>AIDE_Ils</Cle><Texte>State of the ILS input</Texte></Message>
      <Message><Cle>AIDE_CheckClockSpeed</Cle><Texte>Fast clock mode of the device</Texte></Message>
      <Message><Cle>AIDE_ValeurHorloge</Cle><Texte>Calibration number, drift ratio and clock frequency (kHz)</Texte></Message>
      <Message><Cle>AIDE_CommandCalibrationCLK</Cle><Texte>Compute the calibration number from the frequency and write it</Texte></Message>
      <Message><Cle>AIDE_ForceBoot</Cle><Texte>Restart the device in its bootloader</Texte></Message>
      <Message><Cle>AIDE_Programmer</Cle><Texte>Write the serial number and restart the device</Texte></Message>
      <Message><Cle>AIDE_ValeurNumeroSerie</Cle><Texte>Serial number of the device</Texte></Message>
      <Message><Cle>AIDE_ListeSorties</Cle><Texte>Output of the device</Texte></Message>
      <Message><Cle>AIDE_ValeurSortieLogique</Cle><Texte>State of the output, and the state that Activate sends</Texte></Message>
      <Message><Cle>AIDE_Activer</Cle><Texte>Drive the output by hand to the chosen state</Texte></Message>
      <Message><Cle>AIDE_Continu</Cle><Texte>Read the device continuously, once a second</Texte></Message>
      <Message><Cle>AIDE_ArretProgramme</Cle><Texte>Suspend the program of the device</Texte></Message>
      <Message><Cle>ViewAll</Cle><Texte>View all</Texte></Message>
      <Message><Cle>ExitEtalonnage</Cle><Texte>Cancel</Texte></Message>
      <Message><Cle>AIDE_ViewAll</Cle><Texte>Also list the other models</Texte></Message>
      <Message><Cle>AIDE_ExitEtalonnage</Cle><Texte>Close without selecting a device</Texte></Message>
      <Message><Cle>TypeeVarlin</Cle><Texte>Output type</Texte></Message>
      <Message><Cle>Selection</Cle><Texte>Confirm</Texte></Message>
      <Message><Cle>AIDE_TypeeVarlin</Cle><Texte>Type of the outputs of the device</Texte></Message>
      <Message><Cle>AIDE_Selection</Cle><Texte>Confirm the output type</Texte></Message>
      <Message><Cle>LireProg</Cle><Texte>Open program</Texte></Message>
      <Message><Cle>ImprimerProg</Cle><Texte>Print program</Texte></Message>
      <Message><Cle>ApercuProg</Cle><Texte>Print preview</Texte></Message>
      <Message><Cle>ImprimerPdf</Cle><Texte>Print to PDF</Texte></Message>
      <Message><Cle>DetruireProg</Cle><Texte>Delete program</Texte></Message>
      <Message><Cle>EnregistrerProg</Cle><Texte>Save program</Texte></Message>
      <Message><Cle>SortirProgrammation</Cle><Texte>Quit</Texte></Message>
      <Message><Cle>Ajouter</Cle><Texte>Add a condition</Texte></Message>
      <Message><Cle>DetruireCondition</Cle><Texte>Delete the condition</Texte></Message>
      <Message><Cle>ModifierCondition</Cle><Texte>Save the condition</Texte></Message>
      <Message><Cle>LabelHHMMSS</Cle><Texte>hh:mm:ss</Texte></Message>
      <Message><Cle>LabelPeriode</Cle><Texte>Period (days)</Texte></Message>
      <Message><Cle>UniteSeconde</Cle><Texte>s</Texte></Message>
      <Message><Cle>LabelTemporisarion</Cle><Texte>Duration</Texte></Message>
      <Message><Cle>Label3</Cle><Texte>Daily schedule</Texte></Message>
      <Message><Cle>LabelConditions</Cle><Texte>Conditions</Texte></Message>
      <Message><Cle>FramevaleursDefaut</Cle><Texte>Default values</Texte></Message>
      <Message><Cle>Sorties</Cle><Texte>Output 1</Texte></Message>
      <Message><Cle>AIDE_LireProg</Cle><Texte>Read a program file (*.prg)</Texte></Message>
      <Message><Cle>AIDE_ImprimerProg</Cle><Texte>Print the program</Texte></Message>
      <Message><Cle>AIDE_ApercuProg</Cle><Texte>Show the printout of the program before printing it</Texte></Message>
      <Message><Cle>AIDE_ImprimerPdf</Cle><Texte>Save the printout of the program as a PDF file</Texte></Message>
      <Message><Cle>AIDE_DetruireProg</Cle><Texte>Delete a program file</Texte></Message>
      <Message><Cle>AIDE_EnregistrerProg</Cle><Texte>Save the program in a file (*.prg)</Texte></Message>
      <Message><Cle>AIDE_SortirProgrammation</Cle><Texte>Save the program and close</Texte></Message>
      <Message><Cle>AIDE_Ajouter</Cle><Texte>Add a condition line (six at most)</Texte></Message>
      <Message><Cle>AIDE_DetruireCondition</Cle><Texte>Delete the selected condition</Texte></Message>
      <Message><Cle>AIDE_ModifierCondition</Cle><Texte>Save the fields into the selected condition</Texte></Message>
      <Message><Cle>AIDE_NomFichier</Cle><Texte>Name of the current program file</Texte></Message>
      <Message><Cle>AIDE_ValeurPeriode</Cle><Texte>Period in days, 0 to 255</Texte></Message>
      <Message><Cle>AIDE_ValeurTemporisation</Cle><Texte>Duration of the action in seconds, 0 to 32000</Texte></Message>
      <Message><Cle>AIDE_HeureDebut</Cle><Texte>Time of the action, or start date of a periodic line</Texte></Message>
      <Message><Cle>AIDE_HeureFin</Cle><Texte>Time of day of a periodic line</Texte></Message>
      <Message><Cle>AIDE_ListeJours</Cle><Texte>Day of the condition</Texte></Message>
      <Message><Cle>AIDE_ListeValeurLogique</Cle><Texte>State to give the output</Texte></Message>
      <Message><Cle>AIDE_ValeurLogiqueDefaut</Cle><Texte>State of the output when no condition applies</Texte></Message>
      <Message><Cle>AIDE_Sorties</Cle><Texte>Output to program</Texte></Message>
      <Message><Cle>LabelNumeroCommande</Cle><Texte>Order number</Texte></Message>
      <Message><Cle>PrintReport</Cle><Texte>Write report</Texte></Message>
      <Message><Cle>LabelCommentaires</Cle><Texte>Comment</Texte></Message>
      <Message><Cle>AIDE_Commande</Cle><Texte>Order number; the report goes to a file of that name (.log)</Texte></Message>
      <Message><Cle>AIDE_Commentaires</Cle><Texte>Comment added to the report</Texte></Message>
      <Message><Cle>AIDE_PrintReport</Cle><Texte>Append the report to the log file</Texte></Message>
      <Message><Cle>cmdSysInfo</Cle><Texte>System Info...</Texte></Message>
      <Message><Cle>AIDE_cmdSysInfo</Cle><Texte>Show the system information</Texte></Message>
      <Message><Cle>The programme cannot be sent: line %1, field %2: %3 is out of range.</Cle><Texte>The programme cannot be sent: line %1, field %2: %3 is out of range.</Texte></Message>
      <Message><Cle>The programme cannot be sent: it has %1 lines, the controller takes at most %2.</Cle><Texte>The programme cannot be sent: it has %1 lines, the controller takes at most %2.</Texte></Message>
      <Message><Cle>The programme cannot be sent: the default state of the output, %1, is out of range.</Cle><Texte>The programme cannot be sent: the default state of the output, %1, is out of range.</Texte></Message>
    </Traduction>
    <Traduction Nom="Français">
      <Message><Cle>Quorvel Absent</Cle><Texte>Quorvel absent ou ne répond pas</Texte></Message>
      <Message><Cle>Are You Sure ? </Cle><Texte>Redémarrer l'appareil sur son bootloader. Êtes-vous sûr ?</Texte></Message>
      <Message><Cle>Etes vous sur de vouloir changer la version actuelle ? </Cle><Texte>Êtes-vous sûr de vouloir changer la version actuelle du firmware ?</Texte></Message>
      <Message><Cle>Ouvrir Fichier HEX</Cle><Texte>Ouvrir un fichier HEX</Texte></Message>
      <Message><Cle>Invalid File Name (QUORVEL_VX.XX.hex)</Cle><Texte>Nom de fichier invalide : le fichier firmware doit s'appeler QUORVEL_VX.XX.hex</Texte></Message>
      <Message><Cle>Invalid Version Number</Cle><Texte>Numéro de version invalide</Texte></Message>
      <Message><Cle>This version number is lower than version Number 2.70, you need QUORVEL_V2.70.hex</Cle><Texte>Cette version est inférieure à 2.70. Il faut QUORVEL_V2.70.hex ou une version plus récente.</Texte></Message>
      <Message><Cle>Warning : you must Upgrade to Firmware V2.70 or higher </Cle><Texte>Attention : le firmware doit être mis à jour en V2.70 ou plus</Texte></Message>
      <Message><Cle> The connected device firmware must be updated to v2.70 or higher. Would you like to proceed with firmware update?</Cle><Texte>Le firmware de l'appareil connecté doit être mis à jour en V2.70 ou plus. Lancer la mise à jour du firmware ?</Texte></Message>
      <Message><Cle> Unsupported hardware. Please contact Tessaluk</Cle><Texte>Matériel non pris en charge. Veuillez contacter Tessaluk.</Texte></Message>
      <Message><Cle>erreur de saisie</Cle><Texte>Erreur de saisie : entrez une valeur numérique</Texte></Message>
      <Message><Cle>La saisie doit être comprise entre </Cle><Texte>La saisie doit être comprise entre</Texte></Message>
      <Message><Cle> et </Cle><Texte>et</Texte></Message>
      <Message><Cle>La saisie n'est pas numérique</Cle><Texte>La saisie n'est pas numérique</Texte></Message>
      <Message><Cle>Programmation terminée</Cle><Texte>Programmation terminée</Texte></Message>
      <Message><Cle>Les anciennes valeurs seront écrasées</Cle><Texte>Les valeurs enregistrées dans l'appareil seront écrasées.</Texte></Message>
      <Message><Cle>Date and Time Set</Cle><Texte>Date et heure réglées</Texte></Message>
      <Message><Cle>Voulez Détruire le fichier </Cle><Texte>Voulez-vous détruire le fichier</Texte></Message>
      <Message><Cle>Programmation des sorties</Cle><Texte>Programmation des sorties</Texte></Message>
      <Message><Cle>Electro Vanne Bist.</Cle><Texte>Électrovanne bistable</Texte></Message>
      <Message><Cle>Close</Cle><Texte>Fermée</Texte></Message>
      <Message><Cle>Open</Cle><Texte>Ouverte</Texte></Message>
      <Message><Cle>Activer</Cle><Texte>Activer</Texte></Message>
      <Message><Cle>FrameSortie</Cle><Texte>Nom de la sortie</Texte></Message>
      <Message><Cle>FrameCondition</Cle><Texte>Condition</Texte></Message>
      <Message><Cle>Page</Cle><Texte>Page</Texte></Message>
      <Message><Cle>Programme</Cle><Texte>Programme</Texte></Message>
      <Message><Cle>Power on reset</Cle><Texte>Mises sous tension</Texte></Message>
      <Message><Cle>CRC errors</Cle><Texte>Erreurs CRC</Texte></Message>
      <Message><Cle>Brown out errors</Cle><Texte>Baisses de tension</Texte></Message>
      <Message><Cle>Watch dog errors</Cle><Texte>Erreurs watchdog</Texte></Message>
      <Message><Cle>Soft Resets</Cle><Texte>Redémarrages logiciels</Texte></Message>
      <Message><Cle>Vous devez saisir un N° de commande</Cle><Texte>Vous devez saisir un N° de commande</Texte></Message>
      <Message><Cle>Lire</Cle><Texte>Lire les paramètres</Texte></Message>
      <Message><Cle>Ecrire</Cle><Texte>Écrire les paramètres</Texte></Message>
      <Message><Cle>Sortir</Cle><Texte>Quitter l'application</Texte></Message>
      <Message><Cle>Label16</Cle><Texte>Page</Texte></Message>
      <Message><Cle>Label17</Cle><Texte>Tampon</Texte></Message>
      <Message><Cle>FrameInformations</Cle><Texte>Informations</Texte></Message>
      <Message><Cle>Version</Cle><Texte>--</Texte></Message>
      <Message><Cle>LabelVersion</Cle><Texte>Version</Texte></Message>
      <Message><Cle>NumeroSerie</Cle><Texte>--</Texte></Message>
      <Message><Cle>Label1</Cle><Texte>N° de série</Texte></Message>
      <Message><Cle>DateProgrammation</Cle><Texte>--</Texte></Message>
      <Message><Cle>Label2</Cle><Texte>Date de programmation</Texte></Message>
      <Message><Cle>txtCurrentTime</Cle><Texte>--</Texte></Message>
      <Message><Cle>lblCurrentTime</Cle><Texte>Date et heure</Texte></Message>
      <Message><Cle>Batterie</Cle><Texte>--</Texte></Message>
      <Message><Cle>LabelBatterie</Cle><Texte>Tension batterie (V)</Texte></Message>
      <Message><Cle>VMIN</Cle><Texte>Min.</Texte></Message>
      <Message><Cle>VMAX</Cle><Texte>Max.</Texte></Message>
      <Message><Cle>FrameManualActionDelay</Cle><Texte>Durée d'action manuelle</Texte></Message>
      <Message><Cle>LabelManualActionDelayTime</Cle><Texte>(2...65535 s)</Texte></Message>
      <Message><Cle>DaylightFrame</Cle><Texte>Heure d'été</Texte></Message>
      <Message><Cle>EnableDaylightSaving</Cle><Texte>Activer</Texte></Message>
      <Message><Cle>FrameSummer</Cle><Texte>Été</Texte></Message>
      <Message><Cle>FrameWinter</Cle><Texte>Hiver</Texte></Message>
      <Message><Cle>LabelsemaineEte</Cle><Texte>Semaine</Texte></Message>
      <Message><Cle>LabelMoisEte</Cle><Texte>Mois</Texte></Message>
      <Message><Cle>LabelJour</Cle><Texte>Jour</Texte></Message>
      <Message><Cle>Labelheure</Cle><Texte>Heure</Texte></Message>
      <Message><Cle>Labeldelta</Cle><Texte>Décalage heure d'été (min)</Texte></Message>
      <Message><Cle>SetTime</Cle><Texte>Mettre à l'heure</Texte></Message>
      <Message><Cle>FrameMaintenance</Cle><Texte>Maintenance</Texte></Message>
      <Message><Cle>Seuilbatterie</Cle><Texte>Batterie min.</Texte></Message>
      <Message><Cle>LabelVBatMin</Cle><Texte>(V)</Texte></Message>
      <Message><Cle>RazCtn</Cle><Texte>RAZ compteurs CPU</Texte></Message>
      <Message><Cle>Labelctn</Cle><Texte>Compteur</Texte></Message>
      <Message><Cle>LabelILS</Cle><Texte>ILS</Texte></Message>
      <Message><Cle>CheckClockSpeed</Cle><Texte>Horloge rapide</Texte></Message>
      <Message><Cle>LabelCalibrationHorloge</Cle><Texte>Étalonnage de l'horloge</Texte></Message>
      <Message><Cle>CommandCalibrationCLK</Cle><Texte>Étalonner</Texte></Message>
      <Message><Cle>ForceBoot</Cle><Texte>Forcer le bootloader</Texte></Message>
      <Message><Cle>Programmer</Cle><Texte>Programmer</Texte></Message>
      <Message><Cle>Label15</Cle><Texte>Saisir le N° de série</Texte></Message>
      <Message><Cle>FrameMonitoringSorties</Cle><Texte>Surveillance des sorties</Texte></Message>
      <Message><Cle>NomSortie</Cle><Texte>Sortie</Texte></Message>
      <Message><Cle>Continu</Cle><Texte>Lecture en continu</Texte></Message>
      <Message><Cle>ArretProgramme</Cle><Texte>Arrêt programme</Texte></Message>
      <Message><Cle>FrameMessage</Cle><Texte>Message</Texte></Message>
      <Message><Cle>MnuMode</Cle><Texte>Paramètres</Texte></Message>
      <Message><Cle>mnurapport</Cle><Texte>Rapport</Texte></Message>
      <Message><Cle>nmuBootLoad</Cle><Texte>Changer de version</Texte></Message>
      <Message><Cle>mnuPLC</Cle><Texte>Programmation</Texte></Message>
      <Message><Cle>MnuConnect</Cle><Texte>Connexion</Texte></Message>
      <Message><Cle>mnuAide</Cle><Texte>?</Texte></Message>
      <Message><Cle>mnuApropos</Cle><Texte>À propos</Texte></Message>
      <Message><Cle>AIDE_Lire</Cle><Texte>Lecture des paramètres de l'appareil</Texte></Message>
      <Message><Cle>AIDE_Ecrire</Cle><Texte>Écrire la programmation, la règle d'heure d'été et la durée d'action manuelle, puis redémarrer l'appareil</Texte></Message>
      <Message><Cle>AIDE_Sortir</Cle><Texte>Enregistrer la règle d'heure d'été et quitter</Texte></Message>
      <Message><Cle>AIDE_ListeLangues</Cle><Texte>Langue de l'application</Texte></Message>
      <Message><Cle>AIDE_Madate</Cle><Texte>Date dont le jour de la semaine est envoyé à la mise à l'heure</Texte></Message>
      <Message><Cle>AIDE_Liste</Cle><Texte>Liste de choix</Texte></Message>
      <Message><Cle>AIDE_ValeurManualAction</Cle><Texte>Durée d'une action manuelle, de 2 à 65535 secondes</Texte></Message>
      <Message><Cle>AIDE_EnableDaylightSaving</Cle><Texte>Activer ou désactiver le changement d'heure automatique</Texte></Message>
      <Message><Cle>AIDE_Semaine</Cle><Texte>Semaine du mois où l'heure change</Texte></Message>
      <Message><Cle>AIDE_Mois</Cle><Texte>Mois où l'heure change</Texte></Message>
      <Message><Cle>AIDE_Jour</Cle><Texte>Jour de la semaine où l'heure change</Texte></Message>
      <Message><Cle>AIDE_Heure</Cle><Texte>Heure à laquelle l'heure change</Texte></Message>
      <Message><Cle>AIDE_DaylightAdjustment</Cle><Texte>Décalage de l'horloge en minutes</Texte></Message>
      <Message><Cle>AIDE_SetTime</Cle><Texte>Mettre l'horloge de l'appareil à l'heure du PC et écrire la règle d'heure d'été</Texte></Message>
      <Message><Cle>AIDE_Seuilbatterie</Cle><Texte>Écrire le seuil de batterie basse</Texte></Message>
      <Message><Cle>AIDE_MinBat</Cle><Texte>Seuil de batterie basse en volts</Texte></Message>
      <Message><Cle>AIDE_RazCtn</Cle><Texte>Remettre à zéro les cinq compteurs d'événements de l'appareil</Texte></Message>
      <Message><Cle>AIDE_ctn_text</Cle><Texte>Valeur du compteur d'événements</Texte></Message>
      <Message><Cle>AIDE_Ils</Cle><Texte>État de l'entrée ILS</Texte></Message>
      <Message><Cle>AIDE_CheckClockSpeed</Cle><Texte>Mode horloge rapide de l'appareil</Texte></Message>
      <Message><Cle>AIDE_ValeurHorloge</Cle><Texte>Valeur d'étalonnage, dérive et fréquence de l'horloge (kHz)</Texte></Message>
      <Message><Cle>AIDE_CommandCalibrationCLK</Cle><Texte>Calculer la valeur d'étalonnage à partir de la fréquence et l'écrire</Texte></Message>
      <Message><Cle>AIDE_ForceBoot</Cle><Texte>Redémarrer l'appareil sur son bootloader</Texte></Message>
      <Message><Cle>AIDE_Programmer</Cle><Texte>Écrire le numéro de série et redémarrer l'appareil</Texte></Message>
      <Message><Cle>AIDE_ValeurNumeroSerie</Cle><Texte>Numéro de série de l'appareil</Texte></Message>
      <Message><Cle>AIDE_ListeSorties</Cle><Texte>Sortie de l'appareil</Texte></Message>
      <Message><Cle>AIDE_ValeurSortieLogique</Cle><Texte>État de la sortie, et état envoyé par Activer</Texte></Message>
      <Message><Cle>AIDE_Activer</Cle><Texte>Commander la sortie à la main dans l'état choisi</Texte></Message>
      <Message><Cle>AIDE_Continu</Cle><Texte>Lire l'appareil en continu, une fois par seconde</Texte></Message>
      <Message><Cle>AIDE_ArretProgramme</Cle><Texte>Suspendre le programme de l'appareil</Texte></Message>
      <Message><Cle>ViewAll</Cle><Texte>Tout afficher</Texte></Message>
      <Message><Cle>ExitEtalonnage</Cle><Texte>Annuler</Texte></Message>
      <Message><Cle>AIDE_ViewAll</Cle><Texte>Afficher aussi les autres modèles</Texte></Message>
      <Message><Cle>AIDE_ExitEtalonnage</Cle><Texte>Fermer sans choisir d'appareil</Texte></Message>
      <Message><Cle>TypeeVarlin</Cle><Texte>Type de sortie</Texte></Message>
      <Message><Cle>Selection</Cle><Texte>Valider</Texte></Message>
      <Message><Cle>AIDE_TypeeVarlin</Cle><Texte>Type des sorties de l'appareil</Texte></Message>
      <Message><Cle>AIDE_Selection</Cle><Texte>Valider le type de sortie</Texte></Message>
      <Message><Cle>LireProg</Cle><Texte>Lire une programmation</Texte></Message>
      <Message><Cle>ImprimerProg</Cle><Texte>Imprimer la programmation</Texte></Message>
      <Message><Cle>ApercuProg</Cle><Texte>Aperçu avant impression</Texte></Message>
      <Message><Cle>ImprimerPdf</Cle><Texte>Imprimer en PDF</Texte></Message>
      <Message><Cle>DetruireProg</Cle><Texte>Détruire une programmation</Texte></Message>
      <Message><Cle>EnregistrerProg</Cle><Texte>Enregistrer la programmation</Texte></Message>
      <Message><Cle>SortirProgrammation</Cle><Texte>Quitter</Texte></Message>
      <Message><Cle>Ajouter</Cle><Texte>Ajouter une condition</Texte></Message>
      <Message><Cle>DetruireCondition</Cle><Texte>Détruire la condition</Texte></Message>
      <Message><Cle>ModifierCondition</Cle><Texte>Enregistrer la condition</Texte></Message>
      <Message><Cle>LabelHHMMSS</Cle><Texte>hh:mm:ss</Texte></Message>
      <Message><Cle>LabelPeriode</Cle><Texte>Période (jours)</Texte></Message>
      <Message><Cle>UniteSeconde</Cle><Texte>s</Texte></Message>
      <Message><Cle>LabelTemporisarion</Cle><Texte>Temporisation</Texte></Message>
      <Message><Cle>Label3</Cle><Texte>Programmation journalière</Texte></Message>
      <Message><Cle>LabelConditions</Cle><Texte>Conditions</Texte></Message>
      <Message><Cle>FramevaleursDefaut</Cle><Texte>Valeurs par défaut</Texte></Message>
      <Message><Cle>Sorties</Cle><Texte>Sortie 1</Texte></Message>
      <Message><Cle>AIDE_LireProg</Cle><Texte>Lire un fichier de programmation (*.prg)</Texte></Message>
      <Message><Cle>AIDE_ImprimerProg</Cle><Texte>Imprimer la programmation</Texte></Message>
      <Message><Cle>AIDE_ApercuProg</Cle><Texte>Afficher l'impression de la programmation avant de l'imprimer</Texte></Message>
      <Message><Cle>AIDE_ImprimerPdf</Cle><Texte>Enregistrer l'impression de la programmation dans un fichier PDF</Texte></Message>
      <Message><Cle>AIDE_DetruireProg</Cle><Texte>Supprimer un fichier de programmation</Texte></Message>
      <Message><Cle>AIDE_EnregistrerProg</Cle><Texte>Enregistrer la programmation dans un fichier (*.prg)</Texte></Message>
      <Message><Cle>AIDE_SortirProgrammation</Cle><Texte>Enregistrer la programmation et fermer</Texte></Message>
      <Message><Cle>AIDE_Ajouter</Cle><Texte>Ajouter une ligne de condition (six au plus)</Texte></Message>
      <Message><Cle>AIDE_DetruireCondition</Cle><Texte>Détruire la condition sélectionnée</Texte></Message>
      <Message><Cle>AIDE_ModifierCondition</Cle><Texte>Enregistrer les champs dans la condition sélectionnée</Texte></Message>
      <Message><Cle>AIDE_NomFichier</Cle><Texte>Nom du fichier de programmation en cours</Texte></Message>
      <Message><Cle>AIDE_ValeurPeriode</Cle><Texte>Période en jours, de 0 à 255</Texte></Message>
      <Message><Cle>AIDE_ValeurTemporisation</Cle><Texte>Durée de l'action en secondes, de 0 à 32000</Texte></Message>
      <Message><Cle>AIDE_HeureDebut</Cle><Texte>Heure de l'action, ou date de début d'une ligne périodique</Texte></Message>
      <Message><Cle>AIDE_HeureFin</Cle><Texte>Heure d'une ligne périodique</Texte></Message>
      <Message><Cle>AIDE_ListeJours</Cle><Texte>Jour de la condition</Texte></Message>
      <Message><Cle>AIDE_ListeValeurLogique</Cle><Texte>État à donner à la sortie</Texte></Message>
      <Message><Cle>AIDE_ValeurLogiqueDefaut</Cle><Texte>État de la sortie quand aucune condition ne s'applique</Texte></Message>
      <Message><Cle>AIDE_Sorties</Cle><Texte>Sortie à programmer</Texte></Message>
      <Message><Cle>LabelNumeroCommande</Cle><Texte>N° de commande</Texte></Message>
      <Message><Cle>PrintReport</Cle><Texte>Écrire le rapport</Texte></Message>
      <Message><Cle>LabelCommentaires</Cle><Texte>Commentaire</Texte></Message>
      <Message><Cle>AIDE_Commande</Cle><Texte>N° de commande ; le rapport va dans un fichier de ce nom (.log)</Texte></Message>
      <Message><Cle>AIDE_Commentaires</Cle><Texte>Commentaire ajouté au rapport</Texte></Message>
      <Message><Cle>AIDE_PrintReport</Cle><Texte>Ajouter le rapport au fichier journal</Texte></Message>
      <Message><Cle>cmdSysInfo</Cle><Texte>Infos système...</Texte></Message>
      <Message><Cle>AIDE_cmdSysInfo</Cle><Texte>Afficher les informations système</Texte></Message>
      <Message><Cle>The programme cannot be sent: line %1, field %2: %3 is out of range.</Cle><Texte>Le programme ne peut pas être envoyé : ligne %1, champ %2 : %3 est hors limites.</Texte></Message>
      <Message><Cle>The programme cannot be sent: it has %1 lines, the controller takes at most %2.</Cle><Texte>Le programme ne peut pas être envoyé : il a %1 lignes, l'appareil en prend au plus %2.</Texte></Message>
      <Message><Cle>The programme cannot be sent: the default state of the output, %1, is out of range.</Cle><Texte>Le programme ne peut pas être envoyé : l'état par défaut de la sortie, %1, est hors limites.</Texte></Message>
    </Traduction>
  </Messages>
  <Listes>
    <Traduction Nom="English">
      <ListeSorties>
        <Ligne><Texte>Bistable valve</Texte><Index>0</Index><Valeur>0</Valeur><Etat>0</Etat></Ligne>
      </ListeSorties>
      <ListeEntrees>
        <Ligne><Texte>4-20 mA input 1</Texte><Index>0</Index><Valeur>0</Valeur></Ligne>
        <Ligne><Texte>4-20 mA input 2</Texte><Index>1</Index><Valeur>1</Valeur></Ligne>
        <Ligne><Texte>0-10 V input 1</Texte><Index>2</Index><Valeur>2</Valeur></Ligne>
        <Ligne><Texte>0-10 V input 2</Texte><Index>3</Index><Valeur>3</Valeur></Ligne>
        <Ligne><Texte>ILS input</Texte><Index>4</Index><Valeur>4</Valeur></Ligne>
      </ListeEntrees>
      <ListeJours>
        <Ligne><Texte>No time condition</Texte><Index>0</Index><Valeur>0</Valeur></Ligne>
        <Ligne><Texte>Every day</Texte><Index>1</Index><Valeur>8</Valeur></Ligne>
        <Ligne><Texte>Monday to Friday</Texte><Index>2</Index><Valeur>9</Valeur></Ligne>
        <Ligne><Texte>Monday</Texte><Index>3</Index><Valeur>1</Valeur></Ligne>
        <Ligne><Texte>Tuesday</Texte><Index>4</Index><Valeur>2</Valeur></Ligne>
        <Ligne><Texte>Wednesday</Texte><Index>5</Index><Valeur>3</Valeur></Ligne>
        <Ligne><Texte>Thursday</Texte><Index>6</Index><Valeur>4</Valeur></Ligne>
        <Ligne><Texte>Friday</Texte><Index>7</Index><Valeur>5</Valeur></Ligne>
        <Ligne><Texte>Saturday</Texte><Index>8</Index><Valeur>6</Valeur></Ligne>
        <Ligne><Texte>Sunday</Texte><Index>9</Index><Valeur>7</Valeur></Ligne>
        <Ligne><Texte>Periodic</Texte><Index>10</Index><Valeur>12</Valeur></Ligne>
      </ListeJours>
      <ListeMois>
        <Ligne><Texte>January</Texte><Index>0</Index><Valeur>1</Valeur></Ligne>
        <Ligne><Texte>February</Texte><Index>1</Index><Valeur>2</Valeur></Ligne>
        <Ligne><Texte>March</Texte><Index>2</Index><Valeur>3</Valeur></Ligne>
        <Ligne><Texte>April</Texte><Index>3</Index><Valeur>4</Valeur></Ligne>
        <Ligne><Texte>May</Texte><Index>4</Index><Valeur>5</Valeur></Ligne>
        <Ligne><Texte>June</Texte><Index>5</Index><Valeur>6</Valeur></Ligne>
        <Ligne><Texte>July</Texte><Index>6</Index><Valeur>7</Valeur></Ligne>
        <Ligne><Texte>August</Texte><Index>7</Index><Valeur>8</Valeur></Ligne>
        <Ligne><Texte>September</Texte><Index>8</Index><Valeur>9</Valeur></Ligne>
        <Ligne><Texte>October</Texte><Index>9</Index><Valeur>10</Valeur></Ligne>
        <Ligne><Texte>November</Texte><Index>10</Index><Valeur>11</Valeur></Ligne>
        <Ligne><Texte>December</Texte><Index>11</Index><Valeur>12</Valeur></Ligne>
      </ListeMois>
      <ListeSemaines>
        <Ligne><Texte>First week</Texte><Index>0</Index><Valeur>1</Valeur></Ligne>
        <Ligne><Texte>Second week</Texte><Index>1</Index><Valeur>2</Valeur></Ligne>
        <Ligne><Texte>Third week</Texte><Index>2</Index><Valeur>3</Valeur></Ligne>
        <Ligne><Texte>Fourth week</Texte><Index>3</Index><Valeur>4</Valeur></Ligne>
        <Ligne><Texte>Last week</Texte><Index>4</Index><Valeur>5</Valeur></Ligne>
      </ListeSemaines>
    </Traduction>
    <Traduction Nom="Français">
      <ListeSorties>
        <Ligne><Texte>Électrovanne bistable</Texte><Index>0</Index><Valeur>0</Valeur><Etat>0</Etat></Ligne>
      </ListeSorties>
      <ListeEntrees>
        <Ligne><Texte>Entrée 4-20 mA 1</Texte><Index>0</Index><Valeur>0</Valeur></Ligne>
        <Ligne><Texte>Entrée 4-20 mA 2</Texte><Index>1</Index><Valeur>1</Valeur></Ligne>
        <Ligne><Texte>Entrée 0-10 V 1</Texte><Index>2</Index><Valeur>2</Valeur></Ligne>
        <Ligne><Texte>Entrée 0-10 V 2</Texte><Index>3</Index><Valeur>3</Valeur></Ligne>
        <Ligne><Texte>Entrée ILS</Texte><Index>4</Index><Valeur>4</Valeur></Ligne>
      </ListeEntrees>
      <ListeJours>
        <Ligne><Texte>Sans condition horaire</Texte><Index>0</Index><Valeur>0</Valeur></Ligne>
        <Ligne><Texte>Tous les jours</Texte><Index>1</Index><Valeur>8</Valeur></Ligne>
        <Ligne><Texte>Du lundi au vendredi</Texte><Index>2</Index><Valeur>9</Valeur></Ligne>
        <Ligne><Texte>Lundi</Texte><Index>3</Index><Valeur>1</Valeur></Ligne>
        <Ligne><Texte>Mardi</Texte><Index>4</Index><Valeur>2</Valeur></Ligne>
        <Ligne><Texte>Mercredi</Texte><Index>5</Index><Valeur>3</Valeur></Ligne>
        <Ligne><Texte>Jeudi</Texte><Index>6</Index><Valeur>4</Valeur></Ligne>
        <Ligne><Texte>Vendredi</Texte><Index>7</Index><Valeur>5</Valeur></Ligne>
        <Ligne><Texte>Samedi</Texte><Index>8</Index><Valeur>6</Valeur></Ligne>
        <Ligne><Texte>Dimanche</Texte><Index>9</Index><Valeur>7</Valeur></Ligne>
        <Ligne><Texte>Périodique</Texte><Index>10</Index><Valeur>12</Valeur></Ligne>
      </ListeJours>
      <ListeMois>
        <Ligne><Texte>Janvier</Texte><Index>0</Index><Valeur>1</Valeur></Ligne>
        <Ligne><Texte>Février</Texte><Index>1</Index><Valeur>2</Valeur></Ligne>
        <Ligne><Texte>Mars</Texte><Index>2</Index><Valeur>3</Valeur></Ligne>
        <Ligne><Texte>Avril</Texte><Index>3</Index><Valeur>4</Valeur></Ligne>
        <Ligne><Texte>Mai</Texte><Index>4</Index><Valeur>5</Valeur></Ligne>
        <Ligne><Texte>Juin</Texte><Index>5</Index><Valeur>6</Valeur></Ligne>
        <Ligne><Texte>Juillet</Texte><Index>6</Index><Valeur>7</Valeur></Ligne>
        <Ligne><Texte>Août</Texte><Index>7</Index><Valeur>8</Valeur></Ligne>
        <Ligne><Texte>Septembre</Texte><Index>8</Index><Valeur>9</Valeur></Ligne>
        <Ligne><Texte>Octobre</Texte><Index>9</Index><Valeur>10</Valeur></Ligne>
        <Ligne><Texte>Novembre</Texte><Index>10</Index><Valeur>11</Valeur></Ligne>
        <Ligne><Texte>Décembre</Texte><Index>11</Index><Valeur>12</Valeur></Ligne>
      </ListeMois>
      <ListeSemaines>
        <Ligne><Texte>Première semaine</Texte><Index>0</Index><Valeur>1</Valeur></Ligne>
        <Ligne><Texte>Deuxième semaine</Texte><Index>1</Index><Valeur>2</Valeur></Ligne>
        <Ligne><Texte>Troisième semaine</Texte><Index>2</Index><Valeur>3</Valeur></Ligne>
        <Ligne><Texte>Quatrième semaine</Texte><Index>3</Index><Valeur>4</Valeur></Ligne>
        <Ligne><Texte>Dernière semaine</Texte><Index>4</Index><Valeur>5</Valeur></Ligne>
      </ListeSemaines>
    </Traduction>
  </Listes>
  <Splash>True</Splash>
  <Maintenance>False</Maintenance>
  <Conf DAYLIGHT_SAVING=" 1" OF_ETE_HIVER=" 60" OF_MOIS_ETE=" 3" OF_MOIS_HIVER=" 10" OF_HEURE_ETE=" 2" OF_HEURE_HIVER=" 3" OF_JOUR_ETE=" 87" OF_JOUR_HIVER=" 87"/>
  <Langue>English</Langue>
  <NomProgramme></NomProgramme>
  <CONDITIONS>
    <Condition NOM="MASTER" TAG="" SORTIE="3" RANG="1" FORMAT="0" VALEUR=" 1" TEMPORISATION="300" OFFSET=" 0" JOUR="3" HEURE="6" MINUTE="30" SECONDE="0" JOURFIN="0" HEUREFIN="23" MINUTEFIN="4" SECONDEFIN="30" RECOPIEENTREE="0" REGULATION="False" CONSIGNE="" COMMENTAIRE=""/>
    <Condition NOM="Electro Vanne Bist. 1-1" TAG="" SORTIE="3" RANG="1" FORMAT="0" VALEUR=" 1" TEMPORISATION="300" OFFSET=" 0" JOUR="3" HEURE="6" MINUTE="30" SECONDE="0" JOURFIN="0" HEUREFIN="23" MINUTEFIN="4" SECONDEFIN="30" RECOPIEENTREE="0" REGULATION="False" CONSIGNE="" COMMENTAIRE=""/>
    <Condition NOM="Electro Vanne Bist. 1-2" TAG="" SORTIE="3" RANG="2" FORMAT="0" VALEUR=" 1" TEMPORISATION="300" OFFSET=" 0" JOUR="11" HEURE="22" MINUTE="30" SECONDE="0" JOURFIN="11" HEUREFIN="23" MINUTEFIN="4" SECONDEFIN="30" RECOPIEENTREE="0" REGULATION="False" CONSIGNE="" COMMENTAIRE="Nuit"/>
    <Condition NOM="Electro Vanne Bist. 1-3" TAG="" SORTIE="3" RANG="3" FORMAT="0" VALEUR=" 1" TEMPORISATION="300" OFFSET=" 0" JOUR="12" HEURE="7" MINUTE="30" SECONDE="0" JOURFIN="0" HEUREFIN="23" MINUTEFIN="4" SECONDEFIN="30" RECOPIEENTREE="0" REGULATION="False" CONSIGNE="" COMMENTAIRE="caf&#xe9;"/>
    <Condition NOM="Electro Vanne Bist. 1-4" TAG="" SORTIE="3" RANG="4" FORMAT="0" VALEUR=" 1" TEMPORISATION="300" OFFSET=" 0" JOUR="0" HEURE="0" MINUTE="30" SECONDE="0" JOURFIN="0" HEUREFIN="23" MINUTEFIN="4" SECONDEFIN="30" RECOPIEENTREE="0" REGULATION="False" CONSIGNE="" COMMENTAIRE=""/>
  </CONDITIONS>
</Configuration>
